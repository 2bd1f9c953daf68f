#include "failure.h"
#include "options.h"
#include "reader.h"

using namespace vemrado;
using namespace vemrado::capi;

namespace {

vkm_picture DefaultPicture() {
    vkm_picture picture = {};
    picture.size = sizeof picture;
    picture.dpi = 150;
    picture.symbols = 1;
    return picture;
}

}  // namespace

void vkm_picture_init(vkm_picture* picture) {
    if (picture != nullptr) *picture = DefaultPicture();
}
