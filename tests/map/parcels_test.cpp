#include "map/parcels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "map/parcel_sweep.h"

namespace vemrado::map {
namespace {

using Line = std::vector<Point>;

struct Case {
    const char* what;
    std::vector<Line> lines;
    std::vector<double> sizes;  // of the parcels, ascending
    size_t freeEnds = 0;
    size_t cutPieces = 0;
    size_t crossings = 0;
};

Line Square(double x, double y, double side) {
    return {{x, y}, {x + side, y}, {x + side, y + side}, {x, y + side}, {x, y}};
}

Parcels Build(const std::vector<Line>& lines) {
    ParcelBuilder builder;
    for (const Line& line : lines) builder.AddBoundary(line);
    return builder.Build();
}

std::vector<double> SizesOf(const Parcels& made) {
    std::vector<double> sizes;
    for (const Parcel& parcel : made.parcels) sizes.push_back(parcel.area.size);
    std::ranges::sort(sizes);
    return sizes;
}

TEST(Parcels, AreWhatBoundariesEnclose) {
    const Line reversed = {{2, 4}, {2, 0}};
    const std::vector<Case> cases = {
        {"a square", {Square(0, 0, 4)}, {16}},
        {"halves, their border twice in both directions",
         {Square(0, 0, 4), {{2, 0}, {2, 4}}, reversed},
         {8, 8}},
        {"a corner on a neighbour's segment", {Square(0, 0, 4), Square(4, 1, 2)}, {4, 16}},
        {"a square in a square", {Square(0, 0, 9), Square(3, 3, 2)}, {4, 77}},
        {"a hole that touches its square", {Square(0, 0, 4), {{0, 0}, {2, 1}, {1, 2}, {0, 0}}}, {1.5, 14.5}},
        {"two holes that touch each other", {Square(0, 0, 9), Square(2, 2, 2), Square(4, 4, 2)}, {4, 4, 73}},
        {"a gap of a tenth of a millimetre", {{{0, 0}, {4, 0}, {4, 4}, {0, 4}, {0, 1e-4}}}, {}, 2},
        {"a bridge between two squares",
         {Square(0, 0, 1), Square(4, 0, 1), {{1, 0}, {2, 0}, {4, 0}}},
         {1, 1},
         0,
         1},
        {"a crossing without a point", {{{0, 0}, {4, 4}, {4, 0}, {0, 4}, {0, 0}}}, {4, 4}, 0, 0, 1},
        {"a tail", {Square(0, 0, 2), {{2, 2}, {3, 3}, {3, 5}}}, {4}, 1},
        {"decimals on a slope, one corner on it",
         {{{0, 0}, {0.3, 0.9}, {3, 0}, {0, 0}}, {{0.1, 0.3}, {1, 0}}},
         {0.15, 1.2}},
        {"nothing", {}, {}},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.what);
        const Parcels made = Build(one.lines);
        const std::vector<double> sizes = SizesOf(made);
        ASSERT_EQ(sizes.size(), one.sizes.size());
        for (size_t i = 0; i < sizes.size(); ++i) EXPECT_NEAR(sizes[i], one.sizes[i], 1e-6);
        EXPECT_EQ(made.freeEnds.size(), one.freeEnds);
        EXPECT_EQ(made.cutPieces.size(), one.cutPieces);
        EXPECT_EQ(made.crossings.size(), one.crossings);
    }
}

TEST(Parcels, KnowTheirNumbersSheetsAndNeighbours) {
    ParcelBuilder builder;
    builder.AddBoundary(Square(0, 0, 4), 7);
    builder.AddBoundary(Square(4, 0, 4), 2);
    builder.AddNumber({1, 1}, "12");
    builder.AddNumber({2, 2}, "13");
    builder.AddNumber({9, 9}, "14");
    const Parcels made = builder.Build();
    ASSERT_EQ(made.parcels.size(), 2u);
    const bool firstIsWest = made.parcels[0].area.bounds.minX == 0;
    const Parcel& west = made.parcels[firstIsWest ? 0 : 1];
    const Parcel& east = made.parcels[firstIsWest ? 1 : 0];
    EXPECT_EQ(west.number, "12");
    EXPECT_EQ(west.texts, 2);
    EXPECT_EQ(east.texts, 0);
    EXPECT_EQ(west.area.sources, (std::vector<uint32_t>{2, 7}));
    EXPECT_EQ(west.area.neighbours.size(), 1u);
    ASSERT_EQ(made.outside.size(), 1u);
    EXPECT_EQ(made.outside[0].text, "14");
}

TEST(Parcels, SayHowFarFreeEndsLieApart) {
    const Parcels made = Build({{{0, 0}, {4, 0}}, {{4.25, 0}, {9, 0}}});
    std::vector<double> gaps;
    for (const FreeEnd& end : made.freeEnds) gaps.push_back(end.gap);
    std::ranges::sort(gaps);
    EXPECT_EQ(gaps, (std::vector<double>{0.25, 0.25, 4.0, 4.75}));
    EXPECT_TRUE(std::isinf(Build({{{0, 0}, {40, 0}}}).freeEnds[0].gap));
}

TEST(Parcels, GiveUpOnCrossingsThatNoMapHas) {
    std::vector<Line> lines;
    for (int i = 0; i < 1500; ++i) {
        const double at = i + 0.5;
        lines.push_back({{at, 0}, {at, 1500}});
        lines.push_back({{0, at}, {1500, at}});
    }
    const Parcels made = Build(lines);
    EXPECT_TRUE(made.tooManyCrossings);
    EXPECT_TRUE(made.parcels.empty());
}

// Unit edges of a grid at random, and the areas that water from outside does not reach.
class Grid {
  public:
    static constexpr int side = 9;

    explicit Grid(unsigned seed) : random(seed) {
        for (auto& row : east) std::ranges::generate(row, [&] { return random() % 5 < 3; });
        for (auto& row : north) std::ranges::generate(row, [&] { return random() % 5 < 3; });
    }

    // The edges as lines, some of them twice or backwards.
    std::vector<Line> Lines() {
        std::vector<Line> lines;
        const auto add = [&](bool there, Point from, Point to) {
            if (there) lines.push_back({from, to});
            if (there && random() % 4 == 0) lines.push_back({to, from});
        };
        for (int x = 0; x <= side; ++x) {
            for (int y = 0; y <= side; ++y) {
                if (x < side) add(east[x][y], Place(x, y), Place(x + 1, y));
                if (y < side) add(north[x][y], Place(x, y), Place(x, y + 1));
            }
        }
        std::ranges::shuffle(lines, random);
        return lines;
    }

    std::vector<double> DryAreas() {
        std::vector<double> sizes;
        for (auto& row : wet) std::ranges::fill(row, false);
        for (int cell = -1; cell < side * side; ++cell) {
            const int size = Flood(cell < 0 ? -1 : cell % side, cell < 0 ? -1 : cell / side);
            if (cell >= 0 && size > 0) sizes.push_back(size);
        }
        std::ranges::sort(sizes);
        return sizes;
    }

  private:
    static Point Place(int x, int y) { return {740000.0 + x, 1040000.0 + y}; }
    static bool IsInside(int at) { return at >= 0 && at < side; }

    // Cells from -1 to side; those beyond the grid are outside.
    int Flood(int x, int y) {
        if (x < -1 || y < -1 || x > side || y > side || wet[x + 1][y + 1]) return 0;
        wet[x + 1][y + 1] = true;
        const auto wall = [](bool inside, const auto& edges, int column, int row) {
            return inside && edges[column][row];
        };
        int size = 1;
        if (!wall(IsInside(y) && x >= 0, north, std::clamp(x, 0, side), y)) size += Flood(x - 1, y);
        if (!wall(IsInside(y) && x + 1 <= side, north, x + 1, y)) size += Flood(x + 1, y);
        if (!wall(IsInside(x) && y >= 0, east, x, std::clamp(y, 0, side))) size += Flood(x, y - 1);
        if (!wall(IsInside(x) && y + 1 <= side, east, x, y + 1)) size += Flood(x, y + 1);
        return size;
    }

    std::mt19937 random;
    bool east[side + 1][side + 1] = {};
    bool north[side + 1][side + 1] = {};
    bool wet[side + 2][side + 2] = {};
};

TEST(Parcels, AreDryWhenTheRestIsFlooded) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        Grid grid(seed);
        const Parcels made = Build(grid.Lines());
        ASSERT_EQ(SizesOf(made), grid.DryAreas()) << seed;
    }
}

// Sheets one column of the grid wide, each line on the sheet of its western end; lines reach over the sheets'
// borders.
TEST(Parcels, AreTheSameFromOneSweepOverTheSheets) {
    for (unsigned seed = 0; seed < 100; ++seed) {
        Grid grid(seed);
        std::vector<Line> lines = grid.Lines();
        const auto west = [](const Line& line) { return std::min(line[0].x, line[1].x); };
        std::ranges::stable_sort(lines, {}, west);
        const Parcels whole = Build(lines);
        Parcels swept;
        ParcelSweep sweep([&](Parcels&& part) {
            std::ranges::move(part.parcels, std::back_inserter(swept.parcels));
            std::ranges::move(part.freeEnds, std::back_inserter(swept.freeEnds));
        });
        for (size_t i = 0; i < lines.size(); ++i) {
            if (i == 0 || west(lines[i]) != west(lines[i - 1])) sweep.HandOver(west(lines[i]));
            sweep.AddBoundary(lines[i], static_cast<uint32_t>(west(lines[i])));
        }
        sweep.Finish();
        ASSERT_EQ(SizesOf(swept), SizesOf(whole)) << seed;
        ASSERT_EQ(swept.freeEnds.size(), whole.freeEnds.size()) << seed;
    }
}

}  // namespace
}  // namespace vemrado::map
