#pragma once

#include <string>

/// A new unique identifier: a random UUID (RFC 4122, version 4) in its usual text form of 36
/// lower-case characters, such as "2f1c…-…-4…-…-…".
std::string qv_uuid();
