#pragma once

#include <zorvan/colour/CGColor.h>
#include <zorvan/colour/CGGradient.h>
#include <zorvan/colour/CMYKA.h>
#include <zorvan/colour/ColorStops.h>
#include <zorvan/colour/HSBA.h>
#include <zorvan/colour/HSLA.h>
#include <zorvan/colour/HexNSColorTransformer.h>
#include <zorvan/colour/LAB.h>
#include <zorvan/colour/NSColor.h>
#include <zorvan/colour/NSGradient.h>
#include <zorvan/colour/NSValueTransformer.h>
#include <zorvan/colour/RGB.h>
#include <zorvan/colour/RGBA.h>
#include <zorvan/colour/XYZ.h>
#include <zorvan/colour/YUV.h>
#include <zorvan/colour/convertToLAB.h>
