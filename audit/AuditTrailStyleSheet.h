#pragma once
/// \class AuditTrailStyleSheet
/// The style sheet that the browser applies to an audit trail's XML file:
/// "audit_trail.xsl", which has to lie beside the file. A site may supply its
/// own in the application data folder; otherwise it is written from the
/// language module's HTML resources, chosen by the browser's version.

#include <string>

class AuditTrailStyleSheet
{
public:
    /// The style sheet for browsers of version 5.5 and up.
    static constexpr unsigned int kStyleSheetResource = 13166;
    /// The style sheet for older browsers, or when the version is unknown.
    static constexpr unsigned int kPlainStyleSheetResource = 13168;

    /// "audit_trail.xsl".
    static const char* GetXSLFileName() { return "audit_trail.xsl"; }
    /// The style sheet's path beside `xmlPath`: its folder, the file name "audit_trail.xsl".
    static std::string PathBeside(const char* xmlPath);
    /// The resource for the browser version text `ieValue`: kStyleSheetResource when
    /// it is a number of 5.5 or more, else kPlainStyleSheetResource (also for null).
    static unsigned int ResourceForVersion(const char* ieValue);
    /// The text of the value "IE" of "SOFTWARE\\Microsoft\\Internet Explorer\\Version Vector\\"
    /// under HKEY_LOCAL_MACHINE; empty when it is missing.
    static std::string ReadBrowserVersion();
    /// Puts the style sheet beside `xmlPath`: a copy of "audit_trail.xsl" of
    /// `appDataDirectory` when that file is readable and the copy works, else
    /// the resource for the browser's version, written over whatever stands there.
    /// False when neither could be written (the browser then shows the bare XML).
    static bool Place(const char* xmlPath, const std::string& appDataDirectory);
};
