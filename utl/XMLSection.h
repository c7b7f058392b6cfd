#pragma once
/// \class XMLSection
/// Settings in an XML document: a settings file, an XML resource of the
/// language module, a stream, or a document in memory.
///
/// Layout
///  - The top section is the document's root element; a new document has the
///    root element "Tessmark". Sections are child elements.
///  - WriteKey stores a key as an attribute of the section's element. A key is
///    also read from a child element that holds only text (no attributes, no
///    child elements, some text), as people tend to write by hand:
///        `<Options Colour="red"><Title>My title</Title></Options>`
///    holds the keys "Colour" and "Title". Writing such a key replaces the
///    element by the attribute. An empty element is a section, never a key, so
///    an empty value is only kept as an attribute. Every other child element is
///    a section.
///  - Indexed children: ChangeSubSection(name, N), CreateSubSection(name, N) and
///    HasSection(name, N) address the N-th section element called `name`, in
///    document order, counted from 1; an index of -1 means the plain child
///    (the first one of that name).
///  - Values round-trip exactly, whatever they hold: line breaks, carriage
///    returns, tabs, blanks at either end, quotes, "<", "&", any UTF-8 text
///    (such characters are written as character references). A line break
///    typed literally into an attribute by hand reads as a blank, as XML has it.
///  - Comments, processing instructions and the declaration of a file are
///    kept when it is written back.
///  - Names that are no XML names are encoded; see korva::EncodeXMLName below.
///    Callers always use the plain names.
///  - Key and section names are compared exactly, with case.
///
/// Sharing
///  All sections made from one constructor call (Copy, CreateSubSection,
///  CopyAndChange..., GetAllSubSections) are views on one document, which lives
///  as long as any view does; a child view may outlive its parent. Flush from
///  any view writes the whole document. When a section's element is deleted
///  (DeleteSection, or deleting its parent), every view on it or below it is
///  left on nothing: reads and writes then fail, and ChangeSection(name) of the
///  view that stood on the deleted element moves to that element's sibling
///  `name`. A document and its views belong to one thread at a time.

#include <KORVAutl/ConfigurationSection.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

class XMLInputStream;

namespace pugi { struct xml_node_struct; }
namespace korva {

struct XMLDocumentData;

/// The element or attribute name that stores the plain name `name`. Names that
/// are XML names (without ":") stand as they are, such as "CUSTOM_COLOR_3" or
/// "grid_x". Every character that may not stand at its place is written as
/// "_xHHHH_" (its code point, 4 hexadecimal digits, or 6 above U+FFFF), a byte
/// that is no UTF-8 as "_xHH_", and the empty name as "_x_". Where an
/// underscore of the name would then read as the start of such an escape,
/// every "_x" of the name is written "_x005F_x". So "Last file" is stored as
/// "Last_x0020_file", "3D view" as "_x0033_D_x0020_view", "_x0020_" as
/// "_x005F_x0020_". A name written by hand in another form that decodes to a
/// plain name (such as "_x0041_" for "A") is found by that plain name too.
std::string EncodeXMLName(std::string_view name);
/// The plain name of a stored name: the inverse of EncodeXMLName. Every
/// well-formed escape is decoded; all other text stands as it is.
std::string DecodeXMLName(std::string_view name);

} // namespace korva

class XMLSection : public ConfigurationSection
{
public:
    /// How deeply elements may nest in a file that is read; deeper is refused.
    static constexpr int kMaxDepth = 256;

    /// A new, empty document in memory, with the root element "Tessmark".
    XMLSection();

    /// The settings file `path`.
    /// - A missing file gives an empty document if `create` is true (the file
    ///   is written by the first Flush); otherwise this throws.
    /// - A file of zero bytes counts as missing: there is nothing in it to lose.
    /// - A file that cannot be read, or that is not well-formed XML, throws an
    ///   Exception whose text names the file and the reason (the parser's
    ///   message with line and column). Such a file is never written.
    /// - Elements nested deeper than kMaxDepth count as not well-formed.
    XMLSection(const char* path, bool create);

    /// The resource `resourceId` of type "XML" in the current language module,
    /// else in the English one. A missing or empty resource gives an empty
    /// document if `create` is true, else throws; a resource that is not
    /// well-formed throws. The document has no file (see Flush).
    XMLSection(unsigned int resourceId, bool create);

    /// The document read from `stream`, which is read to its end here and is
    /// neither kept nor deleted. A null or empty stream gives an empty document
    /// if `create` is true, else throws; a stream that fails or does not hold
    /// well-formed XML throws. The document has no file (see Flush).
    XMLSection(XMLInputStream* stream, bool create);

    /// Another view on the same element of the same document.
    XMLSection(const XMLSection& other);
    XMLSection& operator=(const XMLSection& other);
    ~XMLSection() override;

    /// Bracket all use of the class in a process; both are harmless to call
    /// again. Terminate logs every settings file that is still open and has
    /// changes that no Flush wrote. Sections work without Initialize as well.
    static void Initialize();
    static void Terminate();
    static bool IsInitialized();
    /// The extension of settings files, without the dot: "xml".
    static const char* TessmarkXMLExtension();

    /// Writes the whole document to its file, safely (SafeFileWriter): the
    /// old file is replaced at once or not at all. Writes nothing, and returns
    /// true, when the file exists and nothing changed since it was read or last
    /// written. A document that has no file (in memory, from a resource or a
    /// stream) has nowhere to go: Flush does nothing and returns true. False
    /// when the file could not be written; the reason goes to the log.
    bool Flush() const override;
    /// Renders the whole document, with its XML declaration, into `text`:
    /// with `indent` one element per line, indented by tabs, as in the file;
    /// without, compact, with no line breaks between elements. Always true.
    bool Flush(std::string& text, bool indent) const;

    /// The settings file of the document, or empty when it has none.
    const std::string& GetFilePath() const;

    // The ConfigurationSection contract; see the header comment for the layout.
    ConfigurationSection* Copy() const override;
    /// Moves to the sibling element `name`, creating it when it is missing. The
    /// top section has no siblings (a document has one root): there it stays.
    void ChangeSection(const char* name) override;
    bool ChangeSubSection(const char* name, int index) override;
    bool ChangeSubSection(const char* name) override;
    /// Creates the missing elements called `name` up to the `index`-th (after
    /// the last child) and returns a view on that one. Null for an index below
    /// 1 other than -1, or when this section stands on nothing.
    ConfigurationSection* CreateSubSection(const char* name, int index) const override;
    ConfigurationSection* CreateSubSection(const char* name) const override;
    std::vector<std::shared_ptr<ConfigurationSection>>* GetAllSubSections(const char* name) const override;
    int NumSubSections(const char* name) const override;
    bool SupportsSubSections() const override { return true; }
    /// Removes the attribute and any text-only element of that name; false
    /// when there was none.
    bool DeleteKey(const char* key) override;
    /// Removes this section's element with everything in it; this view is then
    /// left on nothing (see Sharing). On the top section it removes everything
    /// inside the root element and stays there.
    bool DeleteSection() override;
    /// True when the section has no keys and no children.
    bool IsEmpty() const override;
    bool HasSection(const char* name, int index) const override;
    bool HasKey(const char* key) const override;
    using ConfigurationSection::ReadKey;
    bool ReadKey(const char* key, std::string& value) const override;
    using ConfigurationSection::WriteKey;
    bool WriteKey(const char* key, const char* value) override;
    /// Copies all keys and children, recursively, into `target` through its
    /// own operations, so any back-end can receive them. Keys and sections
    /// already in `target` are kept or overwritten, not removed. A child name
    /// that occurs once becomes CreateSubSection(name), repeated names become
    /// CreateSubSection(name, 1..n). Children are skipped when the target has
    /// no sub-sections. False when a key could not be written or a child not
    /// created. Copying into a section inside this one copies what was there
    /// before the copy began.
    bool WriteToSection(ConfigurationSection* target) const override;
    /// The names of the child sections in document order, one per element (an
    /// indexed child's name appears once for every element of that name).
    std::vector<std::string> GetSectionNames() const override;
    /// The key names: attributes in their order, then text-only elements.
    std::vector<std::string> GetKeyNames() const override;

private:
    explicit XMLSection(std::shared_ptr<korva::XMLDocumentData> document, pugi::xml_node_struct* node);

    void Attach();
    void Detach();
    void LoadBuffer(const char* data, std::size_t size, const std::string& what, unsigned int formatId);
    void NewDocument();

    std::shared_ptr<korva::XMLDocumentData> mDocument;
    // The element this view stands on; null when it was deleted.
    mutable pugi::xml_node_struct* mNode = nullptr;
    // For a view whose element was deleted: that element's parent, so that
    // ChangeSection still finds the siblings. Null otherwise.
    mutable pugi::xml_node_struct* mAnchor = nullptr;
    // The document's list of live views, so deletions can reach all of them.
    XMLSection* mPreviousView = nullptr;
    XMLSection* mNextView = nullptr;

    friend struct korva::XMLDocumentData;
};
