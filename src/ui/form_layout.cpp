#include "ui/form_layout.h"

#include "ui/scale.h"

#include <algorithm>

namespace {

// Lengths at 96 dpi.
constexpr int kEdge = 14;         // around the page
constexpr int kLabelWidth = 140;  // of the column of labels, with its gap
constexpr int kCheckHeight = 19;
constexpr int kTallHeight = 84;
constexpr int kShortWidth = 84;
constexpr int kMiddleWidth = 220;
constexpr int kButtonWidth = 84;
constexpr int kButtonGap = 6;
constexpr int kNoteGap = 2;
constexpr int kCheckIndent = 18;  // of the note below a mark: where its text begins
constexpr int kRowGap = 8;
constexpr int kHeadingAbove = 10;
constexpr int kHeadingBelow = 6;
constexpr int kLeastFill = 120;

int FieldWidth(FormField field, int room, int dpi) {
    switch (field) {
        case FormField::Short: return std::min(room, ScaledTo(kShortWidth, dpi));
        case FormField::Middle: return std::min(room, ScaledTo(kMiddleWidth, dpi));
        case FormField::Button: return std::min(room, ScaledTo(kButtonWidth + 30, dpi));
        default: return room;
    }
}

int FieldHeight(FormField field, int dpi, int rest) {
    switch (field) {
        case FormField::Check: return ScaledTo(kCheckHeight, dpi);
        case FormField::Tall: return ScaledTo(kTallHeight, dpi);
        case FormField::Fill: return std::max(rest, ScaledTo(kLeastFill, dpi));
        default: return ScaledTo(kFormFieldHeight, dpi);
    }
}

wchar_t UpperLetter(wchar_t c) { return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c; }

// The place of the letter to underline, or npos.
std::size_t FreeLetter(std::wstring_view label, std::wstring_view taken) {
    for (const bool firstOfWord : {true, false}) {
        for (std::size_t i = 0; i < label.size(); ++i) {
            const wchar_t letter = UpperLetter(label[i]);
            const bool first = i == 0 || label[i - 1] == L' ';
            if (letter < L'A' || letter > L'Z' || first != firstOfWord) continue;
            if (taken.find(letter) == std::wstring_view::npos) return i;
        }
    }
    return std::wstring_view::npos;
}

}  // namespace

FormPlan FormLayout(std::span<const FormRow> rows, const FormSize& size, const FormNoteHeight& noteHeight) {
    const auto px = [&](int length) { return ScaledTo(length, size.dpi); };
    const int right = size.width - px(kEdge);
    FormPlan plan;
    plan.rows.resize(rows.size());
    int y = px(kEdge);
    bool headed = false;  // something stands above the next heading
    std::size_t headingOf = rows.size();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const FormRow& row = rows[i];
        if (row.heading) headingOf = i;
        if (!row.shown) continue;
        FormPlaceOfRow& place = plan.rows[i];
        // A heading stays when its first row is hidden, above the next row of its group.
        if (headingOf < rows.size()) {
            if (headed) y += px(kHeadingAbove);
            plan.rows[headingOf].heading = {px(kEdge), y, right, y + size.textHeight};
            y += size.textHeight + px(kHeadingBelow);
            headingOf = rows.size();
        }
        headed = true;
        const bool wide = row.field == FormField::Check || row.field == FormField::Fill;
        const int left = wide ? px(kEdge) : px(kEdge + kLabelWidth);
        const int buttonRoom = row.button ? px(kButtonWidth + kButtonGap) : 0;
        const int note = row.hasNote && row.field == FormField::Fill ? size.textHeight + px(kNoteGap) : 0;
        const int height = FieldHeight(row.field, size.dpi, size.height - px(kEdge) - y - note);
        const int width = FieldWidth(row.field, std::max(right - left - buttonRoom, 1), size.dpi);
        place.field = {left, y, left + width, y + height};
        if (row.button)
            place.button = {place.field.right + px(kButtonGap), y, place.field.right + px(kButtonGap + kButtonWidth),
                            y + height};
        if (!wide && row.field != FormField::Button) {
            const int above = row.field == FormField::Tall ? px(3) : (height - size.textHeight) / 2;
            place.label = {px(kEdge), y + above, left - px(kButtonGap), y + above + size.textHeight};
        }
        y += height;
        if (row.hasNote) {
            const int noteLeft = row.field == FormField::Check ? left + px(kCheckIndent) : left;
            const int lines = noteHeight(i, std::max(right - noteLeft, 1));
            if (lines > 0) {
                place.note = {noteLeft, y + px(kNoteGap), right, y + px(kNoteGap) + lines};
                y = place.note.bottom;
            }
        }
        y += px(kRowGap);
    }
    plan.height = y - px(kRowGap) + px(kEdge);
    return plan;
}

int FormScrollTo(int position, int top, int bottom, int pageHeight, int wholeHeight) {
    if (bottom > position + pageHeight) position = bottom - pageHeight;
    if (top < position) position = top;
    return std::max(0, std::min(position, wholeHeight - pageHeight));
}

std::vector<std::wstring> WithMnemonics(std::span<const wchar_t* const> labels, std::wstring taken) {
    std::vector<std::wstring> marked;
    for (const wchar_t* const label : labels) {
        std::wstring text = label;
        const std::size_t at = FreeLetter(text, taken);
        if (at != std::wstring::npos) {
            taken += UpperLetter(text[at]);
            text.insert(at, 1, L'&');
        }
        marked.push_back(std::move(text));
    }
    return marked;
}
