# The style of the pages: items of numbered lists are numbered consecutively, paragraphs are wrapped
# at 100 columns (tables and code may be wider), commands are indented and other code is fenced.
all
rule "MD013", line_length: 100, tables: false, ignore_code_blocks: true
rule "MD024", allow_different_nesting: true
rule "MD029", style: :ordered
exclude_rule "MD046"
