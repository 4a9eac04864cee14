// Writes the data of the page as JSON.
#pragma once

#include <charconv>
#include <concepts>
#include <string>
#include <string_view>

namespace lumo::library {

/// Appends values to a JSON text, with commas between them.
class JsonWriter {
public:
    void begin_list() { begin('['); }
    void end_list() { end(']'); }
    /// A list; `write(element)` writes the values of each element.
    template <typename List, typename Write>
    void list(const List& elements, Write write) {
        begin_list();
        for (const auto& element : elements) {
            write(element);
        }
        end_list();
    }
    void begin_object() { begin('{'); }
    void end_object() { end('}'); }
    /// The key of the next value; it needs no escapes.
    void key(std::string_view name);
    /// Begins a new line, after a comma if a value precedes it.
    void new_line();

    /// The displayed form of `bytes`, as a string without the character "<".
    void text(std::string_view bytes);
    template <std::integral Number>
    void number(Number value) {
        char digits[24];
        literal({digits, std::to_chars(digits, digits + sizeof digits, value).ptr});
    }
    /// A number, rounded to one decimal.
    void one_decimal(double value);
    /// A value that is JSON already, such as null.
    void literal(std::string_view json);

    const std::string& json() const { return json_; }

private:
    void begin(char bracket);
    void end(char bracket);
    void separate();

    std::string json_;
    bool needs_comma_ = false; // before the next value
};

} // namespace lumo::library
