#pragma once

/// Writes the exception that is being handled to the log at ALARM: an error's text (for an
/// invalid enumeration text also the valid ones), a bare text, or
/// "program aborted due to FATAL ERROR". Call it inside a catch block.
void LogCurrentException() noexcept;
