// Imports instruments and prints a sentence about each as soon as its report line arrives.
// usage: consume TOOL SHOW.lumo STATES SEARCH INSTRUMENT...
// Compiled and run by the macOS workflow only.
import Foundation

struct Layer: Decodable {
    let name: String
    let zones, loopedZones: Int
    let controllerChosen, onRelease: Bool
}

struct Shape: Decodable {
    let zones, maxStack, lowestKey, highestKey: Int
    let stackedPercent: Double
    let layers: [Layer]
}

struct Relinked: Decodable {
    let from, to: String
}

struct Report: Decodable {
    let name, source, error, stateFile: String
    let ok: Bool
    let relinked: [Relinked]
    let unresolved, appleLibrary: [String]
    let samples, sampleBytes, copiedBytes: UInt64
    let loadMs: Double
    let shape: Shape
}

func show(_ report: Report) {
    if report.ok {
        print("\(report.name): \(report.samples) samples, \(report.shape.zones) zones, "
            + "\(report.copiedBytes) bytes copied, state \(report.stateFile)")
    } else {
        print("\(report.name): \(report.error)")
        report.unresolved.forEach { print("  not found: \($0)") }
    }
}

let arguments = CommandLine.arguments
guard arguments.count >= 6 else {
    FileHandle.standardError.write(
        Data("usage: consume TOOL SHOW.lumo STATES SEARCH INSTRUMENT...\n".utf8))
    exit(2)
}
let tool = Process()
tool.executableURL = URL(fileURLWithPath: arguments[1])
tool.arguments = ["--package", arguments[2], "--states", arguments[3], "--search", arguments[4]]
    + arguments[5...]
let output = Pipe()
tool.standardOutput = output
try tool.run()

// Bytes are split at line feeds and decoded with replacement characters: a path may contain bytes
// that are not UTF-8.
var pending = Data()
var lines = 0
var failed = 0
while case let chunk = output.fileHandleForReading.availableData, !chunk.isEmpty {
    pending.append(chunk)
    while let end = pending.firstIndex(of: 0x0A) {
        let line = String(decoding: pending[pending.startIndex..<end], as: UTF8.self)
        pending.removeSubrange(pending.startIndex...end)
        let report = try JSONDecoder().decode(Report.self, from: Data(line.utf8))
        show(report)
        lines += 1
        failed += report.ok ? 0 : 1
    }
}
tool.waitUntilExit()
if tool.terminationStatus != 0 || lines != arguments.count - 5 {
    FileHandle.standardError.write(Data("the run ended early: \(lines) lines\n".utf8))
    exit(1)
}
exit(failed == 0 ? 0 : 1)
