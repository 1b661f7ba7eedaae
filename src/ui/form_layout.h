// Places the rows of a page of settings: a label and a field side by side, a note below, headings between. Pure.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The shape of a field.
enum class FormField : std::uint8_t {
    Check,   // as wide as the page, without a label beside it
    Short,   // a number or a colour
    Middle,  // a list to choose from
    Long,    // a text
    Tall,    // a text of several lines
    Fill,    // a list that takes the rest of the page, without a label
    Button,
};

struct FormRow {
    FormField field = FormField::Long;
    bool heading = false;  // a heading stands above it
    bool button = false;   // a button stands after the field
    bool shown = true;
    bool hasNote = false;  // a text stands below it
};

struct FormRect {
    int left = 0, top = 0, right = 0, bottom = 0;  // pixels; empty when there is none
    bool operator==(const FormRect&) const = default;
};
struct FormPlaceOfRow {
    FormRect heading, label, field, button, note;
};

inline constexpr int kFormFieldHeight = 23;  // of a field of one line, at 96 dpi

struct FormSize {
    int width = 0, height = 0;  // of the page, in pixels
    int dpi = 96;
    int textHeight = 15;  // of a line, in pixels
};
// Returns the height in pixels of the note of a row in that width.
using FormNoteHeight = std::function<int(std::size_t row, int width)>;

struct FormPlan {
    std::vector<FormPlaceOfRow> rows;  // hidden ones are empty
    int height = 0;                    // of everything, in pixels; the page scrolls when it is greater than its own
};
FormPlan FormLayout(std::span<const FormRow> rows, const FormSize& size, const FormNoteHeight& noteHeight);

// The scroll position at which everything from `top` to `bottom` is seen, nearest to `position`. All in pixels.
int FormScrollTo(int position, int top, int bottom, int pageHeight, int wholeHeight);

// The labels with a mnemonic each, as "&Font": a letter that no other one has and that is not among `taken` (upper
// case). First letters of words come first. A label for which no letter is left gets none.
std::vector<std::wstring> WithMnemonics(std::span<const wchar_t* const> labels, std::wstring taken);
