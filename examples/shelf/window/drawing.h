#pragma once

#include <zorvan/colour/NSColor.h>
#include <zorvan/media/NSImage.h>
#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/platform/textservices/TextAttributes.h>

#include <string>

// What the views of the window have in common. To be called while they draw.

/// Of text and signs on the ground of the window, light or dark as the desktop is.
zorvan::NSColor inkColor();
zorvan::NSColor faintColor();

/// In the middle of the height, shortened to the width.
void drawLine(const std::string& text, const zorvan::CGRect& in, const zorvan::NSColor& color,
              zorvan::TextAlignment alignment = zorvan::TextAlignment::left);

/// As large as fits, in the middle, never enlarged.
zorvan::CGRect fitted(zorvan::CGSize size, const zorvan::CGRect& in);

/// The thumbnail, fitted; without one a sign that it is under way, or that there is none.
void drawThumbnail(const zorvan::NSImage::Pointer& image, bool isUnderWay,
                   const zorvan::CGRect& in);
