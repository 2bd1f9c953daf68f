// The country that a seed stands for: a lattice of main roads with one sheet in each cell, towns, streams,
// power lines and the boundaries of municipalities and cadastral districts. Everything is found from the seed
// and a place alone, so that neighbouring sheets agree without knowing each other.
//
// Positions are metres east and north of the country's north-west corner; north is 0 or negative.

#pragma once

#include <cstdint>
#include <optional>

#include "geometry.h"

namespace generate {

// Cell of the road lattice; rows are counted southwards.
struct Cell {
    int column = 0;
    int row = 0;
};

// The cells in the order in which sheets are written: a square that grows by its east and south side, so that
// any number of sheets is one coherent area and a smaller file is the beginning of a larger one.
Cell CellOfSheet(int64_t sheet);
int64_t SheetOfCell(Cell cell);

class Country {
  public:
    // One sheet is 625 by 500 m at 1:1000, and in proportion at other scales.
    Country(uint64_t number, int scale) : seed(number), width(0.625 * scale), height(0.5 * scale) {}

    uint64_t Seed() const { return seed; }
    double SheetWidth() const { return width; }
    double SheetHeight() const { return height; }
    // Sheets in a row (and rows) up to the borders of the S-JTSK area.
    int LatticeSize() const;

    // Centre lines of the main roads from a lattice node eastwards and southwards, always 9 points.
    Path RoadEast(Cell node) const;
    Path RoadSouth(Cell node) const;
    // Half the width of those roads in metres.
    double HalfWidthEast(Cell node) const;
    double HalfWidthSouth(Cell node) const;

    // Distance to the nearest town's centre in town radii: below 0.3 the core, up to 1 houses, further out
    // fields.
    double TownDistance(Point place) const;
    Point NearestTown(Point place) const;

    // The stream through a cell, from a point of its western road to one of its eastern road; none in most
    // rows. from and to are the indices of those points in the roads' centre lines.
    struct Stream {
        Path path;
        std::size_t from = 0;
        std::size_t to = 0;
    };
    std::optional<Stream> StreamThrough(Cell cell) const;

    // The power line through a cell, from its northern to its southern road; none in most columns.
    std::optional<Path> PowerLineThrough(Cell cell) const;

    // Municipalities are squares of cells whose boundaries follow main roads; the stream parts each in two
    // districts.
    static constexpr int municipalityCells = 4;
    static bool IsMunicipalityLine(int latticeLine) { return latticeLine % municipalityCells == 0; }
    uint64_t MunicipalityKey(Cell cell) const;
    bool IsSouthOfStream(Cell cell) const;

  private:
    Point Node(Cell node) const;
    Path Road(Cell from, Cell to, int direction) const;
    double HalfWidth(Point place, int latticeLine) const;
    Point TownCenter(int column, int row, double& radius) const;
    int StreamRow(int municipalityRow) const;
    std::size_t StreamCrossing(Cell node) const;

    uint64_t seed;
    double width;
    double height;
};

}  // namespace generate
