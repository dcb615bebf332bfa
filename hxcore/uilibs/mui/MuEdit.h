// A field for one line of text.
#pragma once

#include "mui/MuElement.h"
#include "mui/MuLabelled.h"

#include <climits>
#include <cstdint>

namespace mui {

class MuContainer;

/// Raises EventChanged when the user changes its text; what the program sets raises nothing.
class MuEdit : public MuElement, public MuLabelled {
public:
    enum class Type {
        Normal = 0,
        Password = 1, ///< the text is neither shown nor told to inspection
    };

    /// Asked before each change of the user's.
    class Filter {
    public:
        virtual ~Filter() = default;
        /// `newText` is cut to the limit already; `character` is the key's code point, 0 for a paste or a removal.
        /// False keeps the old text.
        virtual bool accept(MuEdit* edit, const char* newText, uint32_t character) = 0;
    };

    /// Accepts whole decimal numbers within the limits as they are typed, the empty text, and "-" if `min` is below 0.
    class NumericFilter : public Filter {
    public:
        explicit NumericFilter(int minimum = INT_MIN, int maximum = INT_MAX) : min(minimum), max(maximum) {}
        bool accept(MuEdit* edit, const char* newText, uint32_t character) override;

    private:
        int min;
        int max;
    };

    /// `label` stands before the field and may mark its key with "&"; null or "" for none.
    static MuEdit* create(MuContainer* parent, const char* name, const char* label, Type type = Type::Normal);

    Type getEditType() const { return type; }
    virtual void setText(const char* text) = 0; ///< null as ""; the insertion point goes to the end
    virtual const char* getText() = 0;          ///< UTF-8, valid until the next change
    virtual void setLabel(const char* label);
    virtual void setMaxLength(int bytes) = 0; ///< cuts the text at a whole character
    virtual void setPlaceholder(const char* text) = 0;
    virtual void selectAll() = 0;
    virtual void setSelection(int start,
                              int end) = 0; ///< bytes; typing goes on at `end`, or replaces what lies between
    virtual void getSelection(int* start, int* end) = 0; ///< bytes, `start` first; equal where nothing is selected
    virtual void setFieldWidth(int px) = 0; ///< the least width of the field, whatever its text; 0 follows the text
    void setFilter(Filter* newFilter) { filter = newFilter; } ///< borrowed, may be null

    // MuElement
    const char* getType() override { return "edit"; }
    plat::String getState() override;
    bool handleCommand(const char* command, const char* argument) override;

protected:
    MuEdit(const char* name, const char* label, Type type);

    Filter* filter = nullptr;

private:
    Type type;
};

} // namespace mui
