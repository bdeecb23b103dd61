#pragma once

/// Modification dates: one process-wide unsigned 32-bit counter. 0 means "never".
///
/// Both operations are atomic, so that a date may be read while worker threads run.

/// A fresh date, later than every date given out before.
unsigned int qv_get_new_date();

/// The current date counter, without advancing it: the latest date given out.
unsigned int qv_get_date();
