// How symbols and texts stand on the map: rotations in degrees, the anchor and the face of a text.

#pragma once

#include <cstdint>

#include "map/geometry.h"

namespace vemrado::map {

// The unit of U values in a file.
enum class AngleUnit : uint8_t { gon, degree, radian };

// What an axis orientation does to directions. In a file the first coordinate grows to the west and the
// second to the south, so that with orientation 128 north is up; the others turn the map, and half of them
// mirror it.
struct Turn {
    double east = 0;  // where the map's east points, degrees counter-clockwise from the right
    bool mirrored = false;
    Point north{0, 1};  // direction of the map's north, unit vector
};
Turn TurnOf(int axisOrientation);

// What a point as orientation 1 has it becomes.
Point OnMap(Point inFile, const Turn& turn);

// From U values to rotations on the map. An angle counts counter-clockwise from the east of the map; it turns
// with the axes, and in a mirrored map it runs the other way round.
class Rotation {
  public:
    Rotation(AngleUnit unit, int axisOrientation);

    // Degrees counter-clockwise from the right, between -360 and 360 and never a double turn; not finite when
    // the value is not.
    double Degrees(double valueU) const;
    bool Mirrored() const { return turn.mirrored; }

  private:
    double perTurn;  // of the unit
    Turn turn;
};

// The point of a text that stands on its insertion point.
enum class Across : uint8_t { left, middle, right };
enum class Upright : uint8_t { baseline, middle, top };
struct Anchor {
    Across across = Across::left;
    Upright upright = Upright::baseline;
    bool operator==(const Anchor&) const = default;
    // 1 to 9 as on the keys of a numeric keypad.
    int Key() const { return 1 + static_cast<int>(across) + 3 * static_cast<int>(upright); }
};

// From the D value, which is such a key; any other stands for 2. In a mirrored map top and bottom change
// places, so that the text covers the same ground while its letters stay readable.
Anchor AnchorOf(int valueD, bool mirrored = false);

struct Face {
    bool serif = false;
    bool bold = false;
    bool italic = false;
    bool operator==(const Face&) const = default;
};

// From the F value. The names that text faces go by in map files are numbers only; ours tell them apart.
Face FaceOf(int valueF);

// The font that has the letters of a face.
inline const char* FontFamily(const Face& face) {
    return face.serif ? "DejaVu Serif" : "DejaVu Sans";
}

}  // namespace vemrado::map
