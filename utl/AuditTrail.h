#pragma once
/// \class AuditTrail
/// The audit trail of a project: an XML file of sessions, each holding the
/// events that happened to the project while it ran.
///
/// File layout (UTF-8):
///
///     <?xml version="1.0" encoding="UTF-8"?>
///     <?xml-stylesheet type="text/xsl" href="audit_trail.xsl"?>
///     <AuditTrail Project="...">
///       <Session Start="2026-11-24T20:40:00Z" End="..." User="..." ExtendedUserInfo="...">
///         <Event Time="..." User="..." ExtendedUserInfo="...">
///           <Title>...</Title><Detail>...</Detail>
///         </Event>
///       </Session>
///     </AuditTrail>
///
/// Signature: beside the file lies "<file>.sig", the SHA-256 digest (hexadecimal)
/// of the file's canonical content: the document as the XML parser reads it,
/// written back without indentation. A file changed by hand no longer matches.
///
/// Saving is atomic: the file is replaced in one step, and the signature file is
/// written so that a writer killed at any moment leaves a trail whose file is
/// whole and whose signature still matches it (see Save).
///
/// Events are held in memory until the next Save. Signals are raised on the
/// calling thread; the trail and its listeners belong to the user interface thread.

#include <KORVAutl/AuditTrailSettings.h>

#include <boost/signals2/signal.hpp>

#include <memory>
#include <string>

namespace pugi { class xml_document; }

class AuditTrail
{
public:
    /// Every signal passes the trail it concerns.
    using Signal = boost::signals2::signal<void(AuditTrail*)>;
    static Signal msAuditTrailBeginSession;
    static Signal msAuditTrailEventAdded;
    static Signal msAuditTrailEndSession;
    static Signal msAuditTrailProjectNameChanged;
    static Signal msAuditTrailActiveAuditTrailChanged;
    static Signal msAuditTrailDeleting;

    /// What BeginSessionAndVerifySignature found.
    enum ESignature
    {
        eSignatureValid,    ///< the stored file matches its signature
        eSignatureMissing,  ///< no stored file yet: nothing to check
        eSignatureInvalid   ///< file or signature changed outside the trail, or no signature beside a file
    };

    /// A trail stored in `xmlPath`, with its settings on `settingsSection` (not
    /// owned; it must outlive the trail, and may be null). The settings are loaded;
    /// the file is read by Load.
    AuditTrail(const char* xmlPath, ConfigurationSection* settingsSection);
    /// Raises msAuditTrailDeleting first, so that views drop their pointer.
    virtual ~AuditTrail();
    AuditTrail(const AuditTrail&) = delete;
    AuditTrail& operator=(const AuditTrail&) = delete;

    /// Reads the trail's file, replacing what is held in memory. A missing file
    /// gives an empty trail. A file that is no well-formed trail throws an
    /// Exception naming it, and is never written over by Save afterwards.
    void Load();
    /// Writes the trail's file and its signature; throws Exception on failure.
    void Save();
    /// Writes the trail to `path`, with its signature and "audit_trail.xsl" beside it.
    void SaveAs(const char* path);
    /// Empties the trail and writes the empty file.
    void Clear();
    /// No events are held.
    bool IsEmpty() const;

    /// Checks the stored file against its signature, then opens a new session in
    /// memory with the user and the extended user information, and raises
    /// msAuditTrailBeginSession. A failed check is written into the new session as
    /// the event "Audit Trail signature check failed.". Returns the check's finding.
    ESignature BeginSessionAndVerifySignature();
    /// Closes the open session, saves, and raises msAuditTrailEndSession.
    void EndSessionAndSave();
    /// Tells all listeners that the settings changed (msAuditTrailActiveAuditTrailChanged).
    void BroadCastChange();
    /// The trail's XML file.
    std::string GetFileName() const { return mFileName; }

    /// Forgets what is held in memory; called just before a trail that was turned on is loaded.
    virtual void ResetForSession();
    /// Appends one event to the open session (opening one when there is none)
    /// while the trail is on; does nothing while it is off. `detail` may be null.
    /// The last argument is reserved and passed as 0.
    virtual void AddEvent(const char* title, const char* detail, int);

    /// The project the trail belongs to; setting it raises msAuditTrailProjectNameChanged.
    void SetProjectName(const char* name);
    std::string GetProjectName() const;

    /// Events were added since the last Load or Save.
    bool HasUnsavedEvents() const { return mUnsavedEvents; }
    AuditTrailSettings& GetSettings() { return mSettings; }
    const AuditTrailSettings& GetSettings() const { return mSettings; }

    /// The trail the application shows; setting it raises msAuditTrailActiveAuditTrailChanged.
    static void SetActiveAuditTrail(AuditTrail* trail);
    static AuditTrail* GetActiveAuditTrail();

    /// The signature of the XML text `xml`: SHA-256 of its canonical content in
    /// hexadecimal, or empty when it is not well-formed.
    static std::string Signature(const std::string& xml);
    /// The path of the signature file of `xmlPath`.
    static std::string SignatureFileName(const std::string& xmlPath);
    /// Checks the stored file `xmlPath` against the signature beside it.
    static ESignature VerifySignature(const std::string& xmlPath);

private:
    std::string Serialize() const;
    void WriteFile(const std::string& path, const std::string& previousSignature) const;
    void OpenSession();

    std::string mFileName;
    AuditTrailSettings mSettings;
    std::unique_ptr<pugi::xml_document> mDocument;
    bool mUnsavedEvents = false;
    bool mSessionOpen = false;
    bool mDamaged = false;
    static AuditTrail* msActive;
};
