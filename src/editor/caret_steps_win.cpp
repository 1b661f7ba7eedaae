#include "editor/caret_steps.h"

#include "editor/editor_pane.h"
#include "editor/pane_state.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t kMostKept = 200'000;  // carets that the steps of one pane hold: some 20 MB

CaretSteps* StepsOf(HWND editor) {
    PaneState* const state = PaneStateOf(editor);
    return state != nullptr ? &state->caretSteps : nullptr;
}

// Whether a step that begins with `before` goes on with what the last one was.
bool JoinsLast(const CaretSteps& steps, CaretEdit edit, const KeptCarets& before) {
    if (edit == CaretEdit::Other || steps.made.empty()) return false;
    const CaretStep& last = steps.made.back();
    return last.edit == edit && !last.undone && last.after == before;
}

void KeepStep(CaretSteps& steps, CaretStep step) {
    // The selections within a run are never shown again.
    if (step.joins) steps.made.back().after = {};
    if (step.joins) step.before = {};
    steps.made.push_back(std::move(step));
    std::size_t carets = 0;
    for (const CaretStep& each : steps.made) carets += each.before.carets.size() + each.after.carets.size();
    while (carets > kMostKept && steps.made.size() > 1) {
        carets -= steps.made.front().before.carets.size() + steps.made.front().after.carets.size();
        steps.made.pop_front();
    }
}

// Undoes or redoes a step of Scintilla's. Returns the step that it was; null: one without carets.
const CaretStep* Go(HWND editor, CaretSteps& steps, UINT message) {
    steps.met = 0;
    PaneSend(editor, message);
    const auto found = std::ranges::find(steps.made, steps.met, &CaretStep::token);
    return found != steps.made.end() ? &*found : nullptr;
}

bool NextJoins(const CaretSteps& steps, const CaretStep& step) {
    const auto next = std::ranges::find(steps.made, step.token - 1, &CaretStep::token);
    return next != steps.made.end() && next->joins && next->undone;
}

void UndoOrRedo(HWND editor, bool redo) {
    CaretSteps* const steps = StepsOf(editor);
    const UINT message = redo ? SCI_REDO : SCI_UNDO;
    if (steps == nullptr) {
        PaneSend(editor, message);
        return;
    }
    const CaretStep* step = Go(editor, *steps, message);
    while (step != nullptr && (redo ? NextJoins(*steps, *step) : step->joins)) step = Go(editor, *steps, message);
    if (step == nullptr) return;
    const KeptCarets carets = redo ? step->after : step->before;
    if (carets.carets.empty()) return;
    CaretsRestore(editor, carets, {});
    PaneSend(editor, SCI_SCROLLCARET);
}

}  // namespace

CaretUndoStep::CaretUndoStep(HWND editor, CaretEdit edit, bool wanted)
    : editor_(wanted ? editor : nullptr), edit_(edit) {
    if (!wanted) return;
    if (const CaretSteps* const steps = StepsOf(editor); steps != nullptr) changes_ = steps->changes;
    saved_ = PaneSend(editor, SCI_GETMODIFY) == 0;
    before_ = CaretsKeep(editor);
    PaneSend(editor, SCI_BEGINUNDOACTION);
}

CaretUndoStep::~CaretUndoStep() {
    if (editor_ == nullptr) return;
    CaretSteps* const steps = StepsOf(editor_);
    if (steps != nullptr && steps->changes != changes_) {
        CaretStep step;
        step.edit = edit_;
        step.joins = !saved_ && steps->lastChange == changes_ && JoinsLast(*steps, edit_, before_);
        step.token = --steps->lastToken;
        step.before = std::move(before_);
        step.after = CaretsKeep(editor_);
        PaneSend(editor_, SCI_ADDUNDOACTION, step.token, UNDO_NONE);
        KeepStep(*steps, std::move(step));
        steps->lastChange = steps->changes;
    }
    PaneSend(editor_, SCI_ENDUNDOACTION);
}

void CaretStepsPlaced(HWND editor) {
    CaretSteps* const steps = StepsOf(editor);
    if (steps == nullptr || steps->made.empty() || steps->lastChange != steps->changes) return;
    if (!steps->made.back().undone) steps->made.back().after = CaretsKeep(editor);
}

void CaretStepsOnModified(HWND editor, const SCNotification& change) {
    CaretSteps* const steps = StepsOf(editor);
    if (steps == nullptr) return;
    if ((change.modificationType & SC_MOD_CONTAINER) != 0) {
        const auto step = std::ranges::find(steps->made, static_cast<int>(change.token), &CaretStep::token);
        if (step == steps->made.end()) return;
        step->undone = (change.modificationType & SC_PERFORMED_UNDO) != 0;
        steps->met = step->token;
    } else if ((change.modificationType & SC_PERFORMED_USER) != 0) {
        ++steps->changes;
        while (!steps->made.empty() && steps->made.back().undone) steps->made.pop_back();  // no redo leads to it now
    }
}

void EditorUndo(HWND editor) { UndoOrRedo(editor, false); }
void EditorRedo(HWND editor) { UndoOrRedo(editor, true); }
