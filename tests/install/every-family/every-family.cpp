#include <zorvan/zorvan.h>

int main() {
    return zorvan::URL({.fileURLWithPath = "/photos/lake.jpg"}).pathExtension() == "jpg" ? 0 : 1;
}
