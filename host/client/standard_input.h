// Standard input as a file that the module opens by name.

#pragma once

namespace vemrado::client {

// What people write in place of a file name. A file of this name is reached as ./-
inline constexpr const char* standardInputName = "-";

// The name by which the module knows standard input, in its messages too.
inline constexpr const char* standardInputLabel = "standard input";

// The name to show for a file name that people gave.
const char* ShownName(const char* fileName);

// Lets the module's next open of standardInputLabel read standard input, once; the files of that name on the
// disk are not hidden otherwise. Takes the place of the framework's file provider for the rest of the
// process.
void OfferStandardInput();

}  // namespace vemrado::client
