#include <zorvan/text/Double.h>

#include <zorvan/platform/foundation/NSNumber.h>
#include <zorvan/platform/textservices/NumberFormat.h>

namespace zorvan {

std::string formatPercent(double x) {
    if (auto text = percentText(x))
        return *std::move(text);
    return std::to_string(NSNumber(x * 100).int64Value()) + " %";
}

} // namespace zorvan
