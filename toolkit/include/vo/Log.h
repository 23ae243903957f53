#pragma once

#include <td/Export.h>

#include <functional>

namespace vo
{

/// Writes one line to the debug log: to the sink (standard error unless set), and to the log file when one is set.
/// @param format  printf-style. Null does nothing. A text without '%' is written as it is; text from outside (names,
///                driver messages) belongs in the arguments, never in the format. A line feed is added by the log.
/// A message of more than 2047 bytes is cut there in the log file; the sink gets the whole of it.
GUIGL_API void dbgLog(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Redirects the log. @param sink  called with each message, without a line feed; an empty one restores standard error
GUIGL_API void setLogSink(std::function<void(const char*)> sink);

/// Writes the log to a file too, appending to it. @param path  the file; null stops writing to a file
/// @return true when the file is open (or writing was stopped); false, with nothing changed, when it cannot be opened
GUIGL_API bool setLogFile(const char* path);

} // namespace vo
