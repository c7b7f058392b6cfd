#pragma once
// Shortening a path to a width in pixels, for path rows.

#include <string>

class QFontMetrics;

/// `path`, cut to 259 bytes (a buffer of 260 with its terminator; never inside
/// a character), then shortened to `width` pixels in the font of `metrics`: the
/// file name is kept and the folders before it lose their end to "...", as in
/// "/home/an.../report.txt"; a file name too long for that keeps its start and "...".
std::string PathCompactPath(const QFontMetrics& metrics, const std::string& path, int width);
