#include "map/diff.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "map/diff_keys.h"
#include "map/pair_finder.h"

namespace vemrado::map {
namespace {

constexpr uint32_t none = PairFinder::none;

// Which items of both states have been found in the other one.
struct Pairs {
    Pairs(size_t oldCount, size_t newCount) : oldFound(oldCount), partner(newCount, none) {}

    std::vector<bool> oldFound;
    std::vector<uint32_t> partner;                                // of each new item: the old one
    std::vector<bool> equal = std::vector<bool>(partner.size());  // nothing of it changed
};

// Pairs what is left of both states. hash and same take a state and an item, exists tells which items there
// are.
template <typename State, typename Exists, typename HashOf, typename Same>
void PairUp(const State& old, const State& now, Pairs& pairs, bool equal, Exists exists, HashOf hash,
            Same same) {
    const auto limit = static_cast<uint32_t>(pairs.oldFound.size());
    const auto left = [&](uint32_t item) { return !pairs.oldFound[item] && exists(old, item); };
    size_t count = 0;
    for (uint32_t item = 0; item < limit; ++item) count += left(item) ? 1 : 0;
    if (count == 0) return;
    PairFinder finder(count, limit);
    for (uint32_t item = 0; item < limit; ++item) {
        if (left(item))
            finder.Add(item, hash(old, item), [&](uint32_t other) { return same(old, item, old, other); });
    }
    for (uint32_t item = 0; item < pairs.partner.size(); ++item) {
        if (pairs.partner[item] != none || !exists(now, item)) continue;
        const uint32_t found =
            finder.Take(hash(now, item), [&](uint32_t other) { return same(now, item, old, other); });
        if (found == none) continue;
        pairs.partner[item] = found;
        pairs.equal[item] = equal;
        pairs.oldFound[found] = true;
    }
}

// --- Lines ---

class LineComparison {
  public:
    LineComparison(const MapState& oldState, const MapState& newState, const StateValues& sharedValues,
                   ChangeSink& changeSink)
        : old(oldState),
          now(newState),
          values(sharedValues),
          sink(changeSink),
          pairs(old.vertices.size(), now.vertices.size()) {}

    void Run() {
        const auto exists = [](const MapState& state, uint32_t i) { return IsSegment(state.vertices[i]); };
        PairUp(
            old, now, pairs, true, exists,
            [&](const MapState& state, uint32_t i) { return HashOf(state, i, state.vertices[i].pen); },
            [&](const MapState& a, uint32_t i, const MapState& b, uint32_t j) {
                return a.vertices[i].pen == b.vertices[j].pen && EndsOf(a, i) == EndsOf(b, j);
            });
        PairUp(
            old, now, pairs, false, exists,
            [&](const MapState& state, uint32_t i) { return HashOf(state, i, LayerKey(state, i)); },
            [&](const MapState& a, uint32_t i, const MapState& b, uint32_t j) {
                return LayerOf(a, i) == LayerOf(b, j) && EndsOf(a, i) == EndsOf(b, j);
            });
        WriteRemoved();
        WriteNew();
    }

  private:
    using Ends = std::pair<PlaceKey, PlaceKey>;

    static bool IsSegment(const StateVertex& vertex) { return !vertex.begins; }
    static Ends EndsOf(const MapState& state, uint32_t i) {
        const PlaceKey one = KeyOf(state.vertices[i].point);
        const PlaceKey other = KeyOf(state.vertices[i - 1].point);
        return one < other ? Ends{one, other} : Ends{other, one};
    }
    static uint64_t HashOf(const MapState& state, uint32_t i, uint32_t value) {
        const Ends ends = EndsOf(state, i);
        return Hash().Add(ends.first).Add(ends.second).Add(value).Value();
    }
    int LayerOf(const MapState& state, uint32_t i) const { return values.pens[state.vertices[i].pen].layer; }
    uint32_t LayerKey(const MapState& state, uint32_t i) const {
        return static_cast<uint32_t>(LayerOf(state, i));
    }

    void WriteRemoved() {
        WriteRuns(
            old, [&](uint32_t i) { return !pairs.oldFound[i]; }, [](uint32_t, uint32_t) { return true; },
            [&](uint32_t first, uint32_t last) {
                Write({ChangeKind::removed,
                       ChangedThing::line,
                       LayerOf(old, first),
                       Side(old, first, last),
                       {}});
            });
    }

    void WriteNew() {
        const auto oldPen = [&](uint32_t i) {
            return pairs.partner[i] == none ? none : old.vertices[pairs.partner[i]].pen;
        };
        WriteRuns(
            now, [&](uint32_t i) { return !pairs.equal[i]; },
            [&](uint32_t before, uint32_t i) { return oldPen(before) == oldPen(i); },
            [&](uint32_t first, uint32_t last) {
                Change change = {
                    ChangeKind::added, ChangedThing::line, LayerOf(now, first), {}, Side(now, first, last)};
                if (oldPen(first) != none) {
                    change.kind = ChangeKind::changed;
                    change.old = *change.now;
                    change.old->code = values.pens[oldPen(first)].code;
                    change.old->fileLine = OldLine(first, last);
                }
                Write(change);
            });
    }

    // Calls write(first segment, last segment) for each run of wanted segments of one code that belong
    // together.
    template <typename Wanted, typename Together, typename WriteRun>
    void WriteRuns(const MapState& state, Wanted wanted, Together together, WriteRun write) {
        uint32_t first = none;
        const auto end = static_cast<uint32_t>(state.vertices.size());
        for (uint32_t i = 0; i <= end; ++i) {
            const bool isWanted = i < end && IsSegment(state.vertices[i]) && wanted(i);
            const bool goesOn = isWanted && first != none &&
                                state.vertices[i].pen == state.vertices[i - 1].pen && together(i - 1, i);
            if (goesOn) continue;
            if (first != none) write(first, i - 1);
            first = isWanted ? i : none;
        }
    }

    // A whole stroke stands at its first point, a part of one at the end of its first segment.
    ChangeSide Side(const MapState& state, uint32_t first, uint32_t last) const {
        const StateVertex& end = state.vertices[first];
        const uint32_t begin = first - 1;
        ChangeSide side;
        const bool isWhole = state.vertices[begin].begins &&
                             (last + 1 == state.vertices.size() || state.vertices[last + 1].begins);
        side.fileLine = isWhole ? state.vertices[begin].line : end.line;
        for (uint32_t i = begin; i <= last; ++i) side.points.push_back(state.vertices[i].point);
        side.code = values.pens[end.pen].code;
        return side;
    }

    // Where the segments of a run stood, which may have been in the other direction.
    int64_t OldLine(uint32_t first, uint32_t last) const {
        const auto begin = pairs.partner.begin();
        const auto [lowest, highest] = std::minmax_element(begin + first, begin + last + 1);
        if (*highest - *lowest == last - first) return Side(old, *lowest, *highest).fileLine;
        // From several strokes; the first of the file.
        return old.vertices[*lowest].line;
    }

    void Write(const Change& change) { sink.Take(change); }

    const MapState& old;
    const MapState& now;
    const StateValues& values;
    ChangeSink& sink;
    Pairs pairs;
};

// --- Symbols ---

void CompareSymbols(const MapState& old, const MapState& now, const StateValues& values, ChangeSink& sink) {
    Pairs pairs(old.symbols.size(), now.symbols.size());
    const auto exists = [](const MapState&, uint32_t) { return true; };
    const auto layerOf = [&](const MapState& state, uint32_t i) {
        return values.signs[state.symbols[i].sign].layer;
    };
    const auto placeOf = [](const MapState& state, uint32_t i) { return KeyOf(state.symbols[i].point); };
    PairUp(
        old, now, pairs, true, exists,
        [&](const MapState& state, uint32_t i) {
            return Hash().Add(placeOf(state, i)).Add(state.symbols[i].sign).Value();
        },
        [&](const MapState& a, uint32_t i, const MapState& b, uint32_t j) {
            return a.symbols[i].sign == b.symbols[j].sign && placeOf(a, i) == placeOf(b, j);
        });
    PairUp(
        old, now, pairs, false, exists,
        [&](const MapState& state, uint32_t i) { return Hash().Add(placeOf(state, i)).Value(); },
        [&](const MapState& a, uint32_t i, const MapState& b, uint32_t j) {
            return layerOf(a, i) == layerOf(b, j) && placeOf(a, i) == placeOf(b, j);
        });

    const auto side = [&](const MapState& state, uint32_t i) {
        ChangeSide made;
        made.fileLine = state.symbols[i].line;
        made.points = {state.symbols[i].point};
        made.sign = &values.signs[state.symbols[i].sign];
        made.code = made.sign->code;
        return made;
    };
    for (uint32_t i = 0; i < old.symbols.size(); ++i) {
        if (!pairs.oldFound[i])
            sink.Take({ChangeKind::removed, ChangedThing::symbol, layerOf(old, i), side(old, i), {}});
    }
    for (uint32_t i = 0; i < now.symbols.size(); ++i) {
        if (pairs.equal[i]) continue;
        Change change = {ChangeKind::added, ChangedThing::symbol, layerOf(now, i), {}, side(now, i)};
        if (pairs.partner[i] != none) {
            change.kind = ChangeKind::changed;
            change.old = side(old, pairs.partner[i]);
        }
        sink.Take(change);
    }
}

// --- Texts ---

class TextComparison {
  public:
    TextComparison(const MapState& oldState, const MapState& newState, ChangeSink& changeSink)
        : old(oldState), now(newState), sink(changeSink), pairs(old.texts.size(), now.texts.size()) {}

    void Run(double tolerance) {
        PairAt(
            true,
            [](const StateText& a, const StateText& b) {
                return a.code == b.code && a.valueD == b.valueD && a.valueF == b.valueF &&
                       a.height == b.height && a.rotation == b.rotation;
            },
            true);
        PairAt(
            false, [](const StateText&, const StateText&) { return true; }, true);
        std::vector<bool> moved(now.texts.size());
        if (tolerance > 0) PairNear(tolerance, moved);
        PairAt(
            false, [](const StateText&, const StateText&) { return true; }, false);
        Write(moved);
    }

  private:
    // Pairs texts at the same place of the same layer.
    template <typename Same>
    void PairAt(bool equal, Same same, bool sameWords) {
        PairUp(
            old, now, pairs, equal, [](const MapState&, uint32_t) { return true; },
            [&](const MapState& state, uint32_t i) {
                Hash hash;
                hash.Add(KeyOf(state.texts[i].point));
                if (sameWords) hash.Add(state.Words(state.texts[i]));
                return hash.Value();
            },
            [&](const MapState& a, uint32_t i, const MapState& b, uint32_t j) {
                const StateText& one = a.texts[i];
                const StateText& other = b.texts[j];
                return one.layer == other.layer && KeyOf(one.point) == KeyOf(other.point) &&
                       same(one, other) && (!sameWords || a.Words(one) == b.Words(other));
            });
    }

    struct Near {
        uint64_t cell;  // hash of words, layer and cell
        uint32_t item;
        bool operator<(const Near& other) const { return cell < other.cell; }
    };

    static uint64_t CellHash(const MapState& state, const StateText& text, int64_t column, int64_t row) {
        return Hash()
            .Add(state.Words(text))
            .Add(static_cast<uint64_t>(static_cast<int64_t>(text.layer)))
            .Add(PlaceKey{column, row})
            .Value();
    }
    static int64_t CellOf(double coordinate, double size) {
        constexpr double last = 1e15;
        return static_cast<int64_t>(std::clamp(std::floor(coordinate / size), -last, last));
    }

    // Pairs texts of the same words and layer that are no farther apart than the tolerance, nearest first of
    // those that a cell as wide as the tolerance holds.
    void PairNear(double tolerance, std::vector<bool>& moved) {
        std::vector<Near> cells;
        for (uint32_t i = 0; i < old.texts.size(); ++i) {
            const StateText& text = old.texts[i];
            if (!pairs.oldFound[i])
                cells.push_back(
                    {CellHash(old, text, CellOf(text.point.x, tolerance), CellOf(text.point.y, tolerance)),
                     i});
        }
        std::sort(cells.begin(), cells.end());
        for (uint32_t i = 0; i < now.texts.size(); ++i) {
            if (pairs.partner[i] != none) continue;
            const uint32_t nearest = Nearest(cells, now.texts[i], tolerance);
            if (nearest == none) continue;
            pairs.partner[i] = nearest;
            pairs.oldFound[nearest] = true;
            moved[i] = true;
        }
    }

    uint32_t Nearest(const std::vector<Near>& cells, const StateText& text, double tolerance) const {
        // Of so many texts of the same words in one cell the nearest is no better than another.
        constexpr int mostInCell = 64;
        uint32_t nearest = none;
        constexpr double rounding = 1e-6;  // m
        double least = tolerance + rounding;
        for (int64_t column = -1; column <= 1; ++column) {
            for (int64_t row = -1; row <= 1; ++row) {
                const Near wanted = {CellHash(now, text, CellOf(text.point.x, tolerance) + column,
                                              CellOf(text.point.y, tolerance) + row),
                                     0};
                auto at = std::lower_bound(cells.begin(), cells.end(), wanted);
                for (int n = 0; at != cells.end() && at->cell == wanted.cell && n < mostInCell; ++at, ++n) {
                    const StateText& other = old.texts[at->item];
                    const double distance =
                        std::hypot(other.point.x - text.point.x, other.point.y - text.point.y);
                    if (pairs.oldFound[at->item] || distance > least || other.layer != text.layer ||
                        old.Words(other) != now.Words(text))
                        continue;
                    least = distance;
                    nearest = at->item;
                }
            }
        }
        return nearest;
    }

    ChangeSide Side(const MapState& state, uint32_t i) const {
        const StateText& text = state.texts[i];
        ChangeSide side;
        side.fileLine = text.line;
        side.points = {text.point};
        side.text = &text;
        side.words = state.Words(text);
        return side;
    }

    void Write(const std::vector<bool>& moved) {
        for (uint32_t i = 0; i < old.texts.size(); ++i) {
            if (!pairs.oldFound[i])
                sink.Take({ChangeKind::removed, ChangedThing::text, old.texts[i].layer, Side(old, i), {}});
        }
        for (uint32_t i = 0; i < now.texts.size(); ++i) {
            if (pairs.equal[i]) continue;
            Change change = {ChangeKind::added, ChangedThing::text, now.texts[i].layer, {}, Side(now, i)};
            if (pairs.partner[i] != none) {
                change.kind = moved[i] ? ChangeKind::moved : ChangeKind::changed;
                change.old = Side(old, pairs.partner[i]);
            }
            sink.Take(change);
        }
    }

    const MapState& old;
    const MapState& now;
    ChangeSink& sink;
    Pairs pairs;
};

}  // namespace

void CompareMaps(const MapState& old, const MapState& now, const StateValues& values, double tolerance,
                 ChangeSink& sink) {
    LineComparison(old, now, values, sink).Run();
    CompareSymbols(old, now, values, sink);
    TextComparison(old, now, sink).Run(tolerance);
}

}  // namespace vemrado::map
