#include "wvw/UndoStack.h"

namespace wvw {

void UndoStack::note(const State& before, bool typed) {
    const bool sameStep = typed && typing && !past.empty();
    typing = typed;
    future.clear();
    if (sameStep)
        return;
    if (past.size() == limit)
        past.erase(past.begin());
    past.push_back(before);
}

void UndoStack::clear() {
    past.clear();
    future.clear();
    typing = false;
}

bool UndoStack::swap(State& state, std::vector<State>& from, std::vector<State>& to) {
    typing = false;
    if (from.empty())
        return false;
    to.push_back(std::exchange(state, std::move(from.back())));
    from.pop_back();
    return true;
}

} // namespace wvw
