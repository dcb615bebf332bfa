// What is dragged.
#pragma once

namespace hxutil {

/// Base of the data of a drag; a target asks for the kind it understands by dynamic_cast.
class DragDropData {
public:
    virtual ~DragDropData() = default;
};

} // namespace hxutil
