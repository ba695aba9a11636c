#pragma once

namespace thntfs {

enum class StandardStream { Input, Output, Error };

/// True where a person sits at the stream and not a file or a pipe.
bool IsTerminal(StandardStream stream);

/// Columns of the terminal behind standard error, else behind standard output; 80 where there is none.
unsigned TerminalColumns();

/// Seconds since some fixed moment. Goes on evenly whatever happens to the clock of the day.
double SecondsNow();

} // namespace thntfs
