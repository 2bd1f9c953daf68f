// Why a conversion does not go on.

#pragma once

#include <string>

#include "converter.h"

namespace vemrado::gdal {

struct Problem {
    ConvertOutcome outcome;
    std::string text;
};

}  // namespace vemrado::gdal
