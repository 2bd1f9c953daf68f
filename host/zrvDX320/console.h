// What the progress bar needs of the system: standard error as a terminal, and the keyboard's interrupt.

#pragma once

// Columns of the terminal that standard error is; 0 when it is none.
int TerminalColumns();
// Writes UTF-8 to standard error.
void WriteTerminal(const char* text);

// Counts interrupts from the keyboard, in place of ending the process, from Watch to the matching Unwatch;
// then what was in force before is so again. An interrupt that the process ignores stays ignored.
void WatchInterrupts();
void UnwatchInterrupts();
// Interrupts counted since the library was loaded.
int InterruptCount();
