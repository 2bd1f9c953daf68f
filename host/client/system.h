// The few services of the operating system that our hosts need beyond the standard library, with one
// implementation file per system. File names are in the system's own encoding: UTF-8 or plain bytes on Linux,
// the ANSI code page on Windows, which is UTF-8 for our programs from Windows 10 1903 on.

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace vemrado::client {

enum class Encoding : int;

// --- Standard streams ---

enum class WriteResult {
    done,
    closedPipe,  // the reader has gone away
    failed,      // errno says why
};

// Prepares the standard streams of a program: writing to a closed pipe is reported instead of ending the
// process.
void PrepareStandardStreams();

// Writes all bytes to standard output, unbuffered and without a change of line ends.
WriteResult WriteStandardOutput(std::string_view bytes);

bool StandardOutputIsTerminal();

// Reads from standard input. Returns the number of bytes, 0 at the end or when a stop was requested, -1 on
// failure.
int64_t ReadStandardInput(void* destination, size_t count);

// Writes UTF-8 text to standard error in the terminal's encoding; what that does not have is written as '?'.
void WriteStandardError(std::string_view utf8);

// --- Interrupt from the keyboard ---

// The first interrupt of the process becomes a stop request from now on, as a polite end from outside and the
// end of the terminal do; the second ends the process. A process that ignores interrupts, as one in the
// background may, goes on ignoring them.
void CatchInterrupt();

// True once the interrupt came. Any thread may call it.
bool InterruptCaught();

// --- Files ---

enum class FileKind { none, regular, directory, other };

// For a library whose callers give names as UTF-8 whatever the code page of their process: called while the
// library is loaded.
void TakeNamesAsUtf8();

// A file name for the standard library, which takes narrow names in an encoding of its own on Windows.
std::filesystem::path NativePath(const std::string& path);

// Kind of what a path leads to; none when there is nothing or it cannot be reached.
FileKind KindOfFile(const std::string& path);

// The file that a path leads to once symbolic links are followed; the path itself when it leads to nothing
// yet.
std::string FollowLinks(const std::string& path);

// Opens a new file for writing bytes; null when the file exists or cannot be made, errno says why then.
std::FILE* CreateNewFile(const std::string& path);

// Opens a file for reading bytes, shared with other readers; null: errno says why.
std::FILE* OpenForReading(const std::string& path);

// Bytes of an open file; 0 when it has no length.
int64_t LengthOfFile(std::FILE* file);

// Puts a file in the place of another, which may exist; its permissions carry over. False: errno says why.
bool PutInPlace(const std::string& from, const std::string& to);

// The arguments of a program, its own name first, in the encoding of file names. Where the system leaves that
// to programs, one with * or ? outside quotes is replaced by the files whose names match, if there are any.
std::vector<std::string> ProgramArguments(int count, const char* const* arguments);

// Path of the running program; empty when it cannot be found.
std::string ProgramPath();

// Path of the program or library that this code is linked into; empty when it cannot be found.
std::string LibraryPath();

// Makes a new folder for files that outlive the process, which only its user can read. Throws
// std::runtime_error with what the system has against it.
std::string NewTemporaryFolder();

// Opens a file with the program that people have chosen for its kind. Empty when that has begun, or the
// reason why not: one line of UTF-8.
std::string OpenOnDesktop(const std::string& path);

// Number of this process, for names of temporary files.
unsigned long ProcessNumber();

// --- Text ---

// The character that a byte stands for in a single-byte encoding, as the system's tables have it; 0 when the
// byte has none.
char32_t CharacterOfByte(Encoding encoding, unsigned char byte);

// A file name or a message of the system as UTF-8; bytes that make no character become U+FFFD.
std::string SystemTextToUtf8(std::string_view text);

}  // namespace vemrado::client
