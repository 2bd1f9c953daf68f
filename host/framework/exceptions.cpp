// The exceptions that host and module share.

#include "framework/framework.h"

CInvalidArgException::CInvalidArgException() : std::invalid_argument("invalid argument") {}

CInvalidArgException::~CInvalidArgException() = default;

CFileException::CFileException(const char* file, const char* why)
    : std::runtime_error(std::string(file) + ": " + why), fileName(file), reason(why) {}

CFileException::~CFileException() = default;

void AfxThrowInvalidArgException() {
    throw CInvalidArgException();
}

void AfxThrowFileException(const char* fileName, const char* reason) {
    throw CFileException(fileName != nullptr ? fileName : "", reason != nullptr ? reason : "");
}
