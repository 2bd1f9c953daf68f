// The tagged binary file: a magic number, then named and typed records one after another; see "Shape files"
// in docs/symbology-format.md.
//
// A reader never reads past what a record promises, and a fault in a record header ends the records there.

#pragma once

#include <cstdint>

#include "symbols/block_file.h"
#include "symbols/shared_string.h"

namespace vemrado {

// What Check says of a file.
enum TaggedFileState : int32_t {
    taggedFileError = -2,
    taggedFileForeign = -1,
    taggedFileMissing = 0,
    taggedFileValid = 1
};

// Type indices, by the type character in a record's header.
enum TaggedType : int32_t {
    taggedNone = -1,
    taggedInt16 = 0,       // %
    taggedInt32 = 1,       // &
    taggedReal = 2,        // #
    taggedShortBlock = 3,  // $  16-bit length
    taggedBlock = 4,       // @  32-bit length
    taggedPair = 5,        // ~  two 32-bit numbers: bytes to skip, and the size that NextRecord reports
    taggedOtherBlock = 6,  // !  32-bit length
};

class CTaggedFileReader : private CBlockFile {
  public:
    // Opens nothing yet. The module reads only, so readOnly is always 1.
    CTaggedFileReader(const char* path, int readOnly);
    ~CTaggedFileReader() { Close(); }

    // Opens the file and looks at its magic number, the first time.
    int32_t Check();
    // To the first record. 0 for a file that is not valid or after an input error.
    int Rewind();
    // To the next record, past what is left of the current one. 0 at the end of the file and on any error.
    int NextRecord(CSharedString& name, int32_t& typeOut, uint32_t& sizeOut);
    // Bytes of the current value: at most count, to be continued by the next call; with count 0 all that is
    // left, for which destination must have room. Bytes read, 0 on failure.
    uint32_t ReadValue(void* destination, uint32_t count);
    // Past what is left of the current value; 0 when there is none.
    int SkipValue();
    void Close();

    // True after an input error: then the records that were seen are not all of the file's.
    bool Failed() const { return state == taggedFileError; }

  private:
    static constexpr uint32_t flagNamed = 0x1;
    static constexpr uint32_t flagChecked = 0x2;
    static constexpr uint32_t flagInPieces = 0x8;
    static constexpr uint32_t flagPending = 0x10;
    static constexpr uint32_t flagReadOnly = 0x400;

    bool Usable();
    int ReadHeader();
    int ScanName();
    bool ReadSizes();
    bool ReadNumber(uint32_t& number, int32_t bytes);
    void EndValue() { readerFlags &= ~(flagInPieces | flagPending); }
    void FailForGood();
    bool InputErrorTaken();

    int32_t state = taggedFileMissing;
    uint32_t readerFlags = 0;
    CSharedString recordName;
    int32_t typeIndex = taggedNone;
    uint32_t size = 0;
    uint32_t secondSize = 0;
    uint32_t remaining = 0;
    uint32_t fileLength = 0;
};

}  // namespace vemrado
