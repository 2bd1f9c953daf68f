// GDAL's virtual files as the files of the module: zipped, in-memory and remote files import without a copy
// on disk.

#pragma once

#include <string>

#include "client/text_encoding.h"
#include "framework/framework.h"

namespace vemrado::gdal {

// Has every file that GDAL can open by the path as the module gives it, with either separator. No length is
// told: the module makes no progress window then, and no stop request of the keyboard is caught in a host's
// process.
extern const FrameworkFileProvider virtualFiles;

// Reads a file that the provider above opens; one that it cannot open reads as empty.
class FileReading {
  public:
    explicit FileReading(const std::string& name);
    FileReading(const FileReading&) = delete;
    FileReading& operator=(const FileReading&) = delete;
    ~FileReading();

    // As many bytes as come at once; 0 at the end.
    size_t Read(char* to, size_t count);

  private:
    void* file;
};

// Looks at a map file's start. What is no map is reported to GDAL as a failure, and the result is false then;
// a byte order mark, which these files pass over, is a warning. What the start says of the encoding is added.
bool CheckMapFile(const std::string& file, const std::string& shownName, client::EncodingEvidence& evidence);

}  // namespace vemrado::gdal
