#pragma once
/// \class LimitLineLength
/// Breaks text into lines that fit a limit, for windows that size themselves to
/// their text (message boxes, pictures with a caption, sample areas).
///
/// Lines are broken at the last blank that still fits; the run of blanks there
/// becomes one line feed. A word longer than the limit is cut where the limit
/// falls. Existing line feeds stay. Characters are Unicode code points of the
/// UTF-8 text, so a multi-byte letter counts once and is never cut in two.

#include <string>

class QFontMetrics;
class QRect;

class LimitLineLength
{
public:
    /// Breaks `text` in place so that no line has more than `maxCharacters`
    /// characters. A limit of 0 leaves the text alone.
    static void ByCharacters(std::string& text, unsigned int maxCharacters);

    /// Breaks `text` in place so that no line is wider than `width` pixels in
    /// the font of `metrics`; a line of a single character that is wider stays.
    /// A width of 0 or less leaves the text alone.
    static void ByPixels(std::string& text, const QFontMetrics& metrics, int width);

    /// The rectangle, with its top-left corner at (0, 0), that `text` needs in
    /// the font of `metrics`, line feeds and tabs expanded.
    static QRect GetBoundsRect(const QFontMetrics& metrics, const std::string& text);
};
