#include "map/placement.h"

#include <cmath>
#include <iterator>
#include <numbers>

namespace vemrado::map {

Turn TurnOf(int axisOrientation) {
    constexpr struct {
        int code;
        Turn turn;
    } turns[] = {
        {2, {90, false, {-1, 0}}},   {4, {270, false, {1, 0}}}, {8, {90, true, {1, 0}}},
        {16, {180, false, {0, -1}}}, {32, {0, true, {0, -1}}},  {64, {180, true, {0, 1}}},
        {128, {0, false, {0, 1}}},
    };
    for (const auto& row : turns) {
        if (row.code == axisOrientation) return row.turn;
    }
    return {270, true, {-1, 0}};  // points as they stand in the file
}

Point OnMap(Point inFile, const Turn& turn) {
    const double right = turn.mirrored ? -1 : 1;  // of north: there lies east
    const Point east{right * turn.north.y, -right * turn.north.x};
    return {-inFile.y * east.x - inFile.x * turn.north.x, -inFile.y * east.y - inFile.x * turn.north.y};
}

Rotation::Rotation(AngleUnit unit, int axisOrientation) : perTurn(400), turn(TurnOf(axisOrientation)) {
    if (unit == AngleUnit::degree) perTurn = 360;
    if (unit == AngleUnit::radian) perTurn = 2 * std::numbers::pi;
}

double Rotation::Degrees(double valueU) const {
    // What is less than a turn is its own remainder.
    const double part = std::abs(valueU) < perTurn ? valueU : std::fmod(valueU, perTurn);
    const double degrees = part / perTurn * 360;
    if (turn.east == 0 && !turn.mirrored) return degrees;
    return std::fmod(turn.east + (turn.mirrored ? -degrees : degrees), 360);
}

Anchor AnchorOf(int valueD, bool mirrored) {
    const int key = valueD >= 1 && valueD <= 9 ? valueD - 1 : 1;
    const int row = mirrored ? 2 - key / 3 : key / 3;
    return {static_cast<Across>(key % 3), static_cast<Upright>(row)};
}

Face FaceOf(int valueF) {
    constexpr Face faces[] = {{false, false, false}, {false, false, true}, {false, true, false},
                              {false, true, true},   {true, false, false}, {true, true, false},
                              {true, true, true}};
    constexpr int count = static_cast<int>(std::size(faces));
    return faces[valueF >= 1 && valueF <= count ? valueF - 1 : 0];
}

}  // namespace vemrado::map
