#include <KORVAutl/AuditTrail.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutl/ResourceModule.h>
#include <KORVAutl/SafeFileWriter.h>
#include <KORVAutl/TsString.h>
#include <KORVAutlwin/platform/UserIdentity.h>

#include <openssl/evp.h>
#include <pugixml.hpp>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <sstream>

namespace {

constexpr const char* kStyleSheetInstruction = "type=\"text/xsl\" href=\"audit_trail.xsl\"";
constexpr unsigned int kStyleSheetResource = 13166;

std::string UtcNow()
{
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    gmtime_r(&now, &parts);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text;
}

std::string Sha256Hex(const std::string& data)
{
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    if (EVP_Digest(data.data(), data.size(), digest, &length, EVP_sha256(), nullptr) != 1)
        throw Exception("The audit trail's signature cannot be computed.");
    static const char digits[] = "0123456789abcdef";
    std::string hex;
    for (unsigned int i = 0; i < length; ++i) {
        hex += digits[digest[i] >> 4];
        hex += digits[digest[i] & 15];
    }
    return hex;
}

/// The digests listed in a signature file, one per line.
std::vector<std::string> StoredSignatures(const std::string& xmlPath)
{
    std::string content;
    std::vector<std::string> lines;
    if (korva::ReadWholeFile(AuditTrail::SignatureFileName(xmlPath).c_str(), content) != 0)
        return lines;
    std::istringstream in(content);
    for (std::string line; std::getline(in, line);)
        if (!line.empty())
            lines.push_back(line);
    return lines;
}

void WriteOrThrow(const std::string& path, const std::string& content)
{
    std::string error;
    if (!SafeFileWriter::Write(path, content, &error))
        throw Exception(TsString::Format("The audit trail cannot be written to \"%s\": %s", path.c_str(), error.c_str()));
}

} // namespace

AuditTrail::Signal AuditTrail::msAuditTrailBeginSession;
AuditTrail::Signal AuditTrail::msAuditTrailEventAdded;
AuditTrail::Signal AuditTrail::msAuditTrailEndSession;
AuditTrail::Signal AuditTrail::msAuditTrailProjectNameChanged;
AuditTrail::Signal AuditTrail::msAuditTrailActiveAuditTrailChanged;
AuditTrail::Signal AuditTrail::msAuditTrailDeleting;
AuditTrail* AuditTrail::msActive = nullptr;

AuditTrail::AuditTrail(const char* xmlPath, ConfigurationSection* settingsSection)
    : mFileName(xmlPath ? xmlPath : ""), mSettings(settingsSection), mDocument(std::make_unique<pugi::xml_document>())
{
    mSettings.Load();
    ResetForSession();
}

AuditTrail::~AuditTrail()
{
    msAuditTrailDeleting(this);
    if (msActive == this)
        msActive = nullptr;
}

void AuditTrail::ResetForSession()
{
    mDocument->reset();
    mDocument->append_child("AuditTrail");
    mUnsavedEvents = false;
    mSessionOpen = false;
    mDamaged = false;
}

void AuditTrail::Load()
{
    std::string content;
    const int error = korva::ReadWholeFile(mFileName.c_str(), content);
    const std::string project = GetProjectName();
    ResetForSession();
    mDocument->child("AuditTrail").append_attribute("Project") = project.c_str();
    if (error == ENOENT || (error == 0 && content.empty()))
        return;
    if (error != 0)
        throw Exception(TsString::Format("The audit trail \"%s\" cannot be read: %s.", mFileName.c_str(),
                                         std::strerror(error)));
    pugi::xml_document document;
    const auto result = document.load_buffer(content.data(), content.size());
    if (!result || !document.child("AuditTrail")) {
        mDamaged = true;
        throw Exception(TsString::Format("The audit trail \"%s\" is damaged: %s.", mFileName.c_str(),
                                         result ? "it holds no audit trail" : result.description()));
    }
    mDocument->reset(document);
    for (auto node = mDocument->first_child(); node;) {
        const auto next = node.next_sibling();
        if (node.type() == pugi::node_pi || node.type() == pugi::node_declaration)
            mDocument->remove_child(node);
        node = next;
    }
}

std::string AuditTrail::Serialize() const
{
    pugi::xml_document out;
    auto declaration = out.append_child(pugi::node_declaration);
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "UTF-8";
    auto styleSheet = out.append_child(pugi::node_pi);
    styleSheet.set_name("xml-stylesheet");
    styleSheet.set_value(kStyleSheetInstruction);
    out.append_copy(mDocument->child("AuditTrail"));
    std::ostringstream text;
    out.save(text, "  ", pugi::format_indent, pugi::encoding_utf8);
    return text.str();
}

void AuditTrail::WriteFile(const std::string& path, const std::string& previousSignature) const
{
    const std::string content = Serialize();
    const std::string signature = Signature(content);
    const std::string sigPath = SignatureFileName(path);
    // Both digests stand in the signature file while the file itself is replaced,
    // so that a writer killed between the two steps leaves a matching pair.
    if (!previousSignature.empty() && previousSignature != signature)
        WriteOrThrow(sigPath, signature + "\n" + previousSignature + "\n");
    WriteOrThrow(path, content);
    WriteOrThrow(sigPath, signature + "\n");
}

void AuditTrail::Save()
{
    if (mFileName.empty())
        throw Exception("The audit trail has no file.");
    if (mDamaged)
        throw Exception(TsString::Format("The audit trail \"%s\" is damaged and is not written over.",
                                         mFileName.c_str()));
    const auto stored = StoredSignatures(mFileName);
    WriteFile(mFileName, stored.empty() ? std::string() : stored.front());
    mUnsavedEvents = false;
}

void AuditTrail::SaveAs(const char* path)
{
    if (!path || !*path)
        throw Exception("The audit trail cannot be saved without a file name.");
    const auto stored = StoredSignatures(path);
    WriteFile(path, stored.empty() ? std::string() : stored.front());
    std::size_t size = 0;
    const char* styleSheet = LanguageString::GetModule()->FindResource(kStyleSheetResource, "HTML", &size);
    if (!styleSheet)
        styleSheet = korva::EnglishResourceModule().FindResource(kStyleSheetResource, "HTML", &size);
    std::string folder = path;
    const auto slash = folder.find_last_of('/');
    folder = slash == std::string::npos ? std::string() : folder.substr(0, slash + 1);
    if (styleSheet)
        WriteOrThrow(folder + "audit_trail.xsl", std::string(styleSheet, size));
}

void AuditTrail::Clear()
{
    const std::string project = GetProjectName();
    ResetForSession();
    mDocument->child("AuditTrail").append_attribute("Project") = project.c_str();
    Save();
}

bool AuditTrail::IsEmpty() const
{
    return !mDocument->select_node("/AuditTrail/Session/Event");
}

void AuditTrail::OpenSession()
{
    auto session = mDocument->child("AuditTrail").append_child("Session");
    session.append_attribute("Start") = UtcNow().c_str();
    session.append_attribute("User") = korva::UserName().c_str();
    session.append_attribute("ExtendedUserInfo") = mSettings.mExtendedUserInfo.c_str();
    mSessionOpen = true;
}

AuditTrail::ESignature AuditTrail::BeginSessionAndVerifySignature()
{
    const ESignature found = VerifySignature(mFileName);
    OpenSession();
    mUnsavedEvents = true;
    if (found == eSignatureInvalid)
        AddEvent("Audit Trail signature check failed.",
                 "The stored file does not match its signature: it was changed outside the application.", 0);
    msAuditTrailBeginSession(this);
    return found;
}

void AuditTrail::EndSessionAndSave()
{
    if (mSessionOpen) {
        auto session = mDocument->child("AuditTrail").last_child();
        session.append_attribute("End") = UtcNow().c_str();
        mSessionOpen = false;
    }
    Save();
    msAuditTrailEndSession(this);
}

void AuditTrail::BroadCastChange()
{
    msAuditTrailActiveAuditTrailChanged(this);
}

void AuditTrail::AddEvent(const char* title, const char* detail, int)
{
    if (mSettings.mLogEvents < 1)
        return;
    if (!mSessionOpen)
        OpenSession();
    auto event = mDocument->child("AuditTrail").last_child().append_child("Event");
    event.append_attribute("Time") = UtcNow().c_str();
    event.append_attribute("User") = korva::UserName().c_str();
    event.append_attribute("ExtendedUserInfo") = mSettings.mExtendedUserInfo.c_str();
    event.append_child("Title").text() = title ? title : "";
    if (detail)
        event.append_child("Detail").text() = detail;
    mUnsavedEvents = true;
    msAuditTrailEventAdded(this);
}

void AuditTrail::SetProjectName(const char* name)
{
    auto root = mDocument->child("AuditTrail");
    auto attribute = root.attribute("Project");
    if (!attribute)
        attribute = root.append_attribute("Project");
    attribute = name ? name : "";
    msAuditTrailProjectNameChanged(this);
}

std::string AuditTrail::GetProjectName() const
{
    return mDocument->child("AuditTrail").attribute("Project").value();
}

void AuditTrail::SetActiveAuditTrail(AuditTrail* trail)
{
    msActive = trail;
    msAuditTrailActiveAuditTrailChanged(trail);
}

AuditTrail* AuditTrail::GetActiveAuditTrail()
{
    return msActive;
}

std::string AuditTrail::Signature(const std::string& xml)
{
    pugi::xml_document document;
    if (!document.load_buffer(xml.data(), xml.size(), pugi::parse_default | pugi::parse_pi))
        return {};
    std::ostringstream canonical;
    document.save(canonical, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
    return Sha256Hex("KORVAutl audit trail\n" + canonical.str());
}

std::string AuditTrail::SignatureFileName(const std::string& xmlPath)
{
    return xmlPath + ".sig";
}

AuditTrail::ESignature AuditTrail::VerifySignature(const std::string& xmlPath)
{
    std::string content;
    const int error = korva::ReadWholeFile(xmlPath.c_str(), content);
    if (error == ENOENT)
        return eSignatureMissing;
    const std::string signature = error == 0 ? Signature(content) : std::string();
    if (signature.empty())
        return eSignatureInvalid;
    for (const auto& stored : StoredSignatures(xmlPath))
        if (stored == signature)
            return eSignatureValid;
    return eSignatureInvalid;
}
