// The texts that the module shows, in three languages, and the warnings collected during a load of the
// symbology.
//
// Texts are in Windows-1250. The language is chosen once, while the module is loaded. A leaf: any room may
// include it.

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

// The collected warnings, one text for the whole module. A warning that finds no memory is dropped.
void ClearMessages();
void AddMessage(const char* text);
// Adds path + ": " + text.
void AddFileMessage(const char* path, const char* text);
// Shows all warnings in one box with an exclamation mark and an OK button, if there are any. Keeps them.
void ShowMessages();

}  // namespace vemrado
