#pragma once
/// \file HtmlText.h
/// The text rules of the HTML views, apart from the browser.

#include <map>
#include <string>

namespace HtmlText {

/// True when the first four characters of `url` are "app:" in any case.
bool IsAppCommand(const std::string& url);

/// The style found in `body` when a view is given no style of its own: in a
/// lower-case copy of body, the text between the end of "<style" and "</style>",
/// from its first ">" on (that ">" included). Empty when there is no such text.
std::string FindStyleInBody(const std::string& body);

/// The rules of `cssText` as selector -> style, scanned from "{" to the next "}":
/// the selector is the text up to one character before the "{", the style the
/// text between the braces, both trimmed. Selectors holding "@" are skipped;
/// of repeated selectors the last one wins.
std::map<std::string, std::string> ParseRules(const std::string& cssText);

/// The file written for generated content: `html` as it stands when it holds
/// "<HTML>", else a complete document with `title` and `css` in its head.
std::string ComposeSavedPage(const std::string& title, const std::string& css, const std::string& html);

/// `text` without blanks, tabs and line breaks at either end.
std::string Trim(const std::string& text);

} // namespace HtmlText
