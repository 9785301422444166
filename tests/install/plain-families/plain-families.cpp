#include <zorvan/numbers-geometry/CGPoint.h>
#include <zorvan/numbers-geometry/CGRect.h>

int main() {
    const zorvan::CGRect rect({.left = 0, .right = 4, .bottom = 0, .top = 2});
    return rect.with({.rw = 1}).origin == zorvan::CGPoint{3, 0} ? 0 : 1;
}
