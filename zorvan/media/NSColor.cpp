#include <zorvan/media/NSColor.h>

#include <zorvan/media/CGContext.h>

namespace zorvan {

void set(const NSColor& color) {
    setFill(color);
    setStroke(color);
}

void setFill(const NSColor& color) {
    if (const auto context = CGContext::current())
        context->setFillColor(color.cgColor());
}

void setStroke(const NSColor& color) {
    if (const auto context = CGContext::current())
        context->setStrokeColor(color.cgColor());
}

} // namespace zorvan
