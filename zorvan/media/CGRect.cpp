#include <zorvan/media/CGRect.h>

#include <zorvan/media/CGContext.h>
#include <zorvan/media/NSColor.h>
#include <zorvan/media/NSGraphicsContext.h>

namespace zorvan {

namespace {

void strokeSegment(CGPoint from, CGPoint to, double lineWidth) {
    const NSBezierPath::Pointer path = NSBezierPath::create();
    path->move(from);
    path->line(to);
    path->setLineWidth(lineWidth);
    path->stroke();
}

} // namespace

void stroke(const CGRect& rect) { nsPath(rect)->stroke(); }

void stroke(const CGRect& rect, const NSColor& color) {
    setStroke(color);
    stroke(rect);
}

void fill(const CGRect& rect, const NSColor& color) {
    setFill(color);
    const NSGraphicsContext::Pointer context = NSGraphicsContext::current();
    fill(rect, context ? context->compositingOperation() : NSCompositingOperation::sourceOver);
}

void fill(const CGRect& rect, NSCompositingOperation operation) {
    const auto context = CGContext::current();
    if (!context)
        return;
    context->useTemporaryGState([&] {
        context->setCompositingOperation(operation);
        context->fill(rect);
    });
}

NSBezierPath::Pointer nsPath(const CGRect& rect) { return NSBezierPath::create({.rect = rect}); }

NSBezierPath::Pointer nsRoundedPath(const CGRect& rect, double radius) {
    return NSBezierPath::create({.roundedRect = rect, .xRadius = radius, .yRadius = radius});
}

void strokeTopLine(const CGRect& rect, double lineWidth) {
    strokeSegment(rect.topLeft(), rect.topRight(), lineWidth);
}

void strokeBottomLine(const CGRect& rect, double lineWidth) {
    strokeSegment(rect.bottomLeft(), rect.bottomRight(), lineWidth);
}

void strokeLeftLine(const CGRect& rect, double lineWidth) {
    strokeSegment(rect.topLeft(), rect.bottomLeft(), lineWidth);
}

void strokeRightLine(const CGRect& rect, double lineWidth) {
    strokeSegment(rect.topRight(), rect.bottomRight(), lineWidth);
}

} // namespace zorvan
