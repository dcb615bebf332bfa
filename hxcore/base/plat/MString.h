// Building marked-up text.
#pragma once

#include "plat/DString.h"
#include "plat/Markup.h"

namespace plat {

/// A growing text in the language of Markup. Plain text is escaped on its way in.
class MString : public DString {
public:
    MString() = default;

    MString& text(const char* plain);    ///< line feeds become breaks
    MString& markup(const char* marked); ///< as it is
    MString& beginDiv(Markup::Align align = Markup::Left);
    MString& endDiv();
    MString& div(Markup::Align align, const char* plain); ///< a whole block
    MString& a(const char* href, const char* plain);      ///< without a text, the target is shown
    MString& span(const char* style, const char* plain);  ///< `style` as in "color:red;font-weight:700"
    MString& b(const char* plain);
    MString& br();
};

} // namespace plat
