// Reads a map element by element through the C++ interface.

#include <iomanip>
#include <iostream>

#include <vemrado/vkm.hpp>

int main(int argc, char** argv) try {
    std::cout << std::fixed << std::setprecision(2);
    for (const vkm::Element& element : vkm::Reader(argc > 1 ? argv[1] : "map.vkm")) {
        std::cout << "layer " << element.Layer() << ": ";
        if (element.IsText()) {
            std::cout << element.Text() << '\n';
        } else if (element.PointCount() > 0) {
            const vkm::Point& last = element.Points().back();
            std::cout << element.PointCount() << " points to " << last.x << ' ' << last.y << '\n';
        }
    }
} catch (const vkm::Error& error) {
    std::cerr << error.what() << '\n';  // with file and line
    return 1;
}
