#include <zorvan/colour/CMYKA.h>
#include <zorvan/colour/HSBA.h>
#include <zorvan/colour/HSLA.h>
#include <zorvan/colour/RGBA.h>
#include <zorvan/numbers-geometry/RealNumber.h>

#include <initializer_list>

namespace zorvan {

namespace {

std::string text(const char* opening, std::initializer_list<double> components) {
    std::string result = opening;
    const char* separator = "";
    for (const double component : components) {
        result += separator + zorvan::description(component);
        separator = ", ";
    }
    return result + ")";
}

} // namespace

std::string RGBA::description() const { return text("RGBA(", {r, g, b, a}); }

std::string HSBA::description() const { return text("HSBA(", {h, s, b, a}); }

std::string HSLA::description() const { return text("HSLA(", {h, s, l, a}); }

std::string CMYKA::description() const { return text("CMYKA(", {c, m, y, k, a}); }

} // namespace zorvan
