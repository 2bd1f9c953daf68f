#include "tables/kokes_tables.h"

namespace vemrado {

int CKokesTables::Load(int) {
    return 1;
}

int CKokesTables::GetLineStyle(int32_t, uint32_t& colour, int32_t& pattern) {
    colour = 0;
    pattern = 0;
    return 0;
}

int32_t CKokesTables::GetSymbolPattern(int32_t) {
    return 0;
}
int32_t CKokesTables::GetLayerValue(int32_t) const {
    return 0;
}
void CKokesTables::SetLayerValue(int32_t, int32_t) {}
int CKokesTables::GetLayerStyle(int32_t, uint32_t&, int32_t&) const {
    return 0;
}

}  // namespace vemrado
