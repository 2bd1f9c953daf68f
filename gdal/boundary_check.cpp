#include "boundary_check.h"

#include <cpl_error.h>
#include <cpl_string.h>

#include <bit>
#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "parcels.h"

namespace vemrado::gdal {

namespace {

using Place = std::pair<double, double>;
using Segment = std::pair<Place, Place>;

size_t HashOf(const Place& place) {
    constexpr uint64_t spread = 0x9E3779B97F4A7C15;
    const uint64_t x = std::bit_cast<uint64_t>(place.first) * spread;
    const uint64_t y = std::bit_cast<uint64_t>(place.second) * spread;
    return static_cast<size_t>(x ^ std::rotl(y, 31) ^ x >> 32);
}

struct HashPlace {
    size_t operator()(const Place& place) const { return HashOf(place); }
};
struct HashSegment {
    size_t operator()(const Segment& segment) const {
        return HashOf(segment.first) + 31 * HashOf(segment.second);
    }
};

Place PlaceAt(const OGRLineString& line, int index) {
    return {line.getX(index), line.getY(index)};
}

// The same for both directions.
Segment SegmentAt(const OGRLineString& line, int index) {
    const Place one = PlaceAt(line, index);
    const Place two = PlaceAt(line, index + 1);
    return one < two ? Segment(one, two) : Segment(two, one);
}

// Pieces meet at their ends only, and polygons are made of whole pieces with the same corners.
class Boundaries {
  public:
    explicit Boundaries(const std::vector<Parcel>& parcels) {
        for (const Parcel& parcel : parcels) {
            for (const OGRLinearRing* ring : *parcel.shape) {
                for (int i = 0; i + 1 < ring->getNumPoints(); ++i) segments.insert(SegmentAt(*ring, i));
            }
        }
    }
    bool Bounds(const OGRLineString& piece) const { return segments.contains(SegmentAt(piece, 0)); }

  private:
    std::unordered_set<Segment, HashSegment> segments;
};

template <typename Visit>
void ForEachPiece(const OGRGeometry& pieces, Visit visit) {
    if (wkbFlatten(pieces.getGeometryType()) == wkbLineString) {
        visit(*pieces.toLineString());
        return;
    }
    for (const OGRGeometry* part : *pieces.toGeometryCollection()) {
        if (wkbFlatten(part->getGeometryType()) == wkbLineString) visit(*part->toLineString());
    }
}

OGRRawPoint RawPoint(const Place& place) {
    return OGRRawPoint(place.first, place.second);
}

// The pieces that bound no parcel, by their ends. What hangs on a free end is taken away piece by piece.
class OpenPieces {
  public:
    // Counts the end of every piece.
    void AddEnds(const OGRLineString& piece) {
        ++ends[PlaceAt(piece, 0)];
        ++ends[PlaceAt(piece, piece.getNumPoints() - 1)];
    }
    void Add(const OGRLineString& piece) {
        const Place first = PlaceAt(piece, 0);
        const Place last = PlaceAt(piece, piece.getNumPoints() - 1);
        at[first].push_back(pieces.size());
        at[last].push_back(pieces.size());
        pieces.push_back({first, last});
    }

    // Takes away what hangs on free ends, which are added to the finding in the order of the pieces.
    void TakeAwayDangling(Finding& free) {
        std::vector<Place> places;
        for (const Piece& piece : pieces) {
            for (const Place& end : {piece.first, piece.last}) {
                if (ends[end] != 1) continue;
                free.Add(RawPoint(end), "");
                places.push_back(end);
            }
        }
        while (!places.empty()) {
            const Place place = places.back();
            places.pop_back();
            for (const size_t number : at[place]) {
                Piece& piece = pieces[number];
                if (std::exchange(piece.gone, true)) continue;
                const Place other = piece.first == place ? piece.last : piece.first;
                if (--ends[other] == 1) places.push_back(other);
            }
        }
    }

    void ReportLeft(Finding& left) const {
        for (const Piece& piece : pieces) {
            if (!piece.gone) left.Add(RawPoint(piece.first), "");
        }
    }

  private:
    struct Piece {
        Place first;
        Place last;
        bool gone = false;
    };
    std::unordered_map<Place, int, HashPlace> ends;
    std::unordered_map<Place, std::vector<size_t>, HashPlace> at;
    std::vector<Piece> pieces;
};

}  // namespace

void Finding::Add(const OGRRawPoint& place, const std::string& what) {
    constexpr int shown = 3;
    if (++count > shown) return;
    examples += (count == 1 ? "" : "; ") + what + (what.empty() ? "" : " ") + "at ";
    // Adding zero leaves no negative zero to print.
    examples += CPLString().Printf("%.2f %.2f", place.x + 0.0, place.y + 0.0);
}

void Finding::Report(const std::string& file, const char* what) const {
    if (count == 0) return;
    CPLError(CE_Warning, CPLE_AppDefined, "%s: %d %s, for example %s", file.c_str(), count, what,
             examples.c_str());
}

void ReportOpenBoundaries(const OGRGeometry& pieces, const std::vector<Parcel>& parcels,
                          const std::string& file) {
    const Boundaries boundaries(parcels);
    OpenPieces open;
    ForEachPiece(pieces, [&](const OGRLineString& piece) {
        open.AddEnds(piece);
        if (!boundaries.Bounds(piece)) open.Add(piece);
    });
    Finding freeEnds;
    Finding between;
    open.TakeAwayDangling(freeEnds);
    open.ReportLeft(between);
    freeEnds.Report(file, "free ends of boundaries that close no parcel");
    between.Report(file, "boundaries lie between others and close no parcel");
}

}  // namespace vemrado::gdal
