// What a text field was before.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace wvw {

/// Earlier and later states of an edited text, the oldest forgotten first.
class UndoStack {
public:
    struct State {
        std::string text;
        int cursor = 0; // byte
    };

    /// Notes the state before a change; what was undone is gone. A `typed` character that follows another one directly
    /// belongs to the same step.
    void note(const State& before, bool typed);
    void endStep() { typing = false; } ///< the next character starts a step of its own
    void clear();

    /// Swaps `state` for the one before, or for the one that was undone last. False if there is none.
    bool undo(State& state) { return swap(state, past, future); }
    bool redo(State& state) { return swap(state, future, past); }

private:
    static constexpr size_t limit = 100;

    bool swap(State& state, std::vector<State>& from, std::vector<State>& to);

    std::vector<State> past;
    std::vector<State> future;
    bool typing = false;
};

} // namespace wvw
