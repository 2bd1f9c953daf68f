// The texts that the module shows, in three languages.
//
// Texts are in Windows-1250. The language is chosen once, while the module is loaded, so any thread may read
// them afterwards.

#pragma once

namespace vemrado {

// Current texts; read an entry at the moment it is shown.
extern const char* msgReadingInputFile;
extern const char* msgEnd;
extern const char* msgNoColorTable;
extern const char* msgNoWidthTable;
extern const char* msgNoLineCodeTable;
extern const char* msgNoSymbolCodeTable;
extern const char* msgNoSymbolFile;
extern const char* msgSymbolsNotImported;

// 0: Czech, 2: German, any other country: English.
void SelectLanguage(int country);

}  // namespace vemrado
