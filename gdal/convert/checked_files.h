// Files of an output whose failed writes are remembered: some drivers do not look whether a write succeeded.

#pragma once

#include <string>

namespace vemrado::gdal {

// The path by which GDAL writes the file through the check.
std::string CheckedPath(const std::string& path);

// The same for standard output.
const char* CheckedStandardOutput();
// Writes out what stands in its buffer.
void FlushStandardOutput();

// Why a write through the check failed, since the last call of ForgetFailedWrites; empty when none did.
const std::string& FailedWrite();
void ForgetFailedWrites();
// Whether it failed because nobody reads standard output any more.
bool ReaderIsGone();

}  // namespace vemrado::gdal
