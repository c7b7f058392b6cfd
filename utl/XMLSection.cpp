#include <KORVAutl/XMLSection.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutl/Log.h>
#include <KORVAutl/ResourceModule.h>
#include <KORVAutl/SafeFileWriter.h>
#include <KORVAutl/TsString.h>
#include <KORVAutlwin/platform/TsUnicode.h>
#include <KORVAutl/XMLInputStream.h>

#include <pugixml.hpp>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <set>
#include <unordered_map>

namespace {

// Language strings of this class.
constexpr unsigned int kNoFileName = 30100;
constexpr unsigned int kFileMissing = 30101;
constexpr unsigned int kFileUnreadable = 30102;
constexpr unsigned int kFileNotXML = 30103;
constexpr unsigned int kResourceMissing = 30104;
constexpr unsigned int kResourceNotXML = 30105;
constexpr unsigned int kStreamMissing = 30106;
constexpr unsigned int kStreamUnreadable = 30107;
constexpr unsigned int kStreamNotXML = 30108;

constexpr const char* kRootName = "Tessmark";

// Comments, processing instructions and the declaration are kept so that a
// file a person annotated keeps its annotations when it is written back.
constexpr unsigned int kParseOptions = pugi::parse_default | pugi::parse_declaration | pugi::parse_doctype |
                                       pugi::parse_pi | pugi::parse_comments;

std::atomic<bool> msInitialized{false};

pugi::xml_node Node(pugi::xml_node_struct* node) { return pugi::xml_node(node); }

// ---------------------------------------------------------------------------
// Name encoding

bool IsNameStart(char32_t c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || (c >= 0xC0 && c <= 0xD6) ||
           (c >= 0xD8 && c <= 0xF6) || (c >= 0xF8 && c <= 0x2FF) || (c >= 0x370 && c <= 0x37D) ||
           (c >= 0x37F && c <= 0x1FFF) || (c >= 0x200C && c <= 0x200D) || (c >= 0x2070 && c <= 0x218F) ||
           (c >= 0x2C00 && c <= 0x2FEF) || (c >= 0x3001 && c <= 0xD7FF) || (c >= 0xF900 && c <= 0xFDCF) ||
           (c >= 0xFDF0 && c <= 0xFFFD) || (c >= 0x10000 && c <= 0xEFFFF);
}

bool IsNameChar(char32_t c)
{
    return IsNameStart(c) || c == '-' || c == '.' || (c >= '0' && c <= '9') || c == 0xB7 ||
           (c >= 0x300 && c <= 0x36F) || (c >= 0x203F && c <= 0x2040);
}

void AppendEscape(std::string& text, unsigned long value, int digits)
{
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "_x%0*lX_", digits, value);
    text += buffer;
}

std::string EncodeName(std::string_view name, bool escapeUnderscores)
{
    std::string encoded;
    encoded.reserve(name.size() + 8);
    for (std::size_t i = 0; i < name.size();) {
        if (escapeUnderscores && name[i] == '_' && i + 1 < name.size() && name[i + 1] == 'x') {
            encoded += "_x005F_";
            ++i;
            continue;
        }
        char32_t c = 0;
        const std::size_t length = korva::DecodeUtf8(name, i, c);
        if (length == 0) {
            AppendEscape(encoded, static_cast<unsigned char>(name[i]), 2);
            ++i;
            continue;
        }
        const bool valid = c != ':' && (encoded.empty() ? IsNameStart(c) : IsNameChar(c));
        if (valid)
            encoded.append(name.substr(i, length));
        else
            AppendEscape(encoded, c, c > 0xFFFF ? 6 : 4);
        i += length;
    }
    return encoded;
}

bool IsPlainAsciiName(std::string_view name)
{
    if (name.empty())
        return false;
    const auto start = static_cast<unsigned char>(name[0]);
    if (!((start >= 'A' && start <= 'Z') || (start >= 'a' && start <= 'z') || start == '_'))
        return false;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const auto c = static_cast<unsigned char>(name[i]);
        if (!((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-' ||
              c == '.'))
            return false;
        if (c == '_' && i + 1 < name.size() && name[i + 1] == 'x')
            return false;
    }
    return true;
}

int HexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

// ---------------------------------------------------------------------------
// Element helpers

// A key written by hand as an element: no attributes, no child elements, some text.
bool IsKeyElement(pugi::xml_node element)
{
    if (element.type() != pugi::node_element || element.first_attribute())
        return false;
    bool text = false;
    for (pugi::xml_node child = element.first_child(); child; child = child.next_sibling()) {
        switch (child.type()) {
        case pugi::node_pcdata:
        case pugi::node_cdata:
            if (*child.value())
                text = true;
            break;
        case pugi::node_comment:
        case pugi::node_pi:
            break;
        default:
            return false;
        }
    }
    return text;
}

bool IsSectionElement(pugi::xml_node node)
{
    return node.type() == pugi::node_element && !IsKeyElement(node);
}

std::string KeyElementText(pugi::xml_node element)
{
    std::string text;
    for (pugi::xml_node child = element.first_child(); child; child = child.next_sibling())
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata)
            text += child.value();
    return text;
}

// A name as the caller gives it and as the document stores it. Documents that
// hold stored names in a form the encoder would not write (an escape written
// by hand, such as "_x0041_") are matched by the decoded name as well.
struct Name
{
    Name(const char* name, bool loose) : plain(name), stored(korva::EncodeXMLName(name)), loose(loose) {}

    bool Matches(const char* name) const
    {
        return std::strcmp(name, stored.c_str()) == 0 || (loose && korva::DecodeXMLName(name) == plain);
    }

    std::string plain;
    std::string stored;
    bool loose;
};

// Calls `visit` for each child element called `name` until it returns false.
template <typename Visit>
void ForEachNamed(pugi::xml_node node, const Name& name, Visit visit)
{
    if (!name.loose) {
        for (pugi::xml_node child = node.child(name.stored.c_str()); child; child = child.next_sibling(name.stored.c_str()))
            if (!visit(child))
                return;
        return;
    }
    for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling())
        if (child.type() == pugi::node_element && name.Matches(child.name()) && !visit(child))
            return;
}

pugi::xml_node FindKeyElement(pugi::xml_node node, const Name& name)
{
    pugi::xml_node found;
    ForEachNamed(node, name, [&](pugi::xml_node child) {
        if (IsKeyElement(child))
            found = child;
        return !found;
    });
    return found;
}

// The `index`-th section element called `name` (from 1).
pugi::xml_node FindSection(pugi::xml_node node, const Name& name, int index)
{
    pugi::xml_node found;
    if (index >= 1)
        ForEachNamed(node, name, [&](pugi::xml_node child) {
            if (IsSectionElement(child) && --index == 0)
                found = child;
            return !found;
        });
    return found;
}

int CountSections(pugi::xml_node node, const Name& name)
{
    int count = 0;
    ForEachNamed(node, name, [&](pugi::xml_node child) {
        count += IsSectionElement(child);
        return true;
    });
    return count;
}

// Calls `visit(element, depth)` for every element of the document in document
// order (the document element at depth 1), until it returns false; false then.
// Walked without recursion: a document may nest deeper than the stack allows.
template <class Visit>
bool ForEachElement(const pugi::xml_document& document, Visit visit)
{
    pugi::xml_node node = document.document_element();
    const pugi::xml_node root = node;
    int depth = 1;
    while (node) {
        if (node.type() == pugi::node_element && !visit(node, depth))
            return false;
        if (node.first_child()) {
            node = node.first_child();
            ++depth;
            continue;
        }
        while (node != root && !node.next_sibling()) {
            node = node.parent();
            --depth;
        }
        if (node == root)
            break;
        node = node.next_sibling();
    }
    return true;
}

// Are there stored names that the encoder would not write?
bool HasLooseNames(const pugi::xml_document& document)
{
    const auto loose = [](const char* name) {
        return !IsPlainAsciiName(name) && korva::EncodeXMLName(korva::DecodeXMLName(name)) != name;
    };
    return !ForEachElement(document, [&](pugi::xml_node node, int) {
        if (loose(node.name()))
            return false;
        for (pugi::xml_attribute a = node.first_attribute(); a; a = a.next_attribute())
            if (loose(a.name()))
                return false;
        return true;
    });
}

bool IsSelfOrDescendant(pugi::xml_node_struct* node, pugi::xml_node_struct* ancestor)
{
    for (pugi::xml_node n = Node(node); n; n = n.parent())
        if (n.internal_object() == ancestor)
            return true;
    return false;
}

// What pugixml accepts but XML does not: null when `document` is well-formed,
// else the reason, with `offset` set to where the fault is.
const char* CheckWellFormed(const pugi::xml_document& document, std::ptrdiff_t& offset)
{
    int elements = 0;
    for (pugi::xml_node node = document.first_child(); node; node = node.next_sibling()) {
        offset = node.offset_debug();
        switch (node.type()) {
        case pugi::node_element:
            if (++elements > 1)
                return "More than one root element";
            break;
        case pugi::node_pcdata:
        case pugi::node_cdata:
            return "Text outside the root element";
        case pugi::node_declaration:
            if (node != document.first_child())
                return "The XML declaration is not at the start";
            break;
        case pugi::node_doctype:
            if (elements > 0)
                return "The document type declaration follows the root element";
            break;
        default:
            break;
        }
    }
    if (elements == 0) {
        offset = 0;
        return "No document element found";
    }
    // Attribute names must be unique within an element. Nesting is limited:
    // written back indented, each level costs every line below it one more tab.
    std::vector<std::string_view> names;
    const char* failure = nullptr;  // null: well formed
    ForEachElement(document, [&](pugi::xml_node node, int depth) {
        if (depth > XMLSection::kMaxDepth) {
            offset = node.offset_debug();
            failure = "Elements nested too deeply";
            return false;
        }
        if (!node.first_attribute() || !node.first_attribute().next_attribute())
            return true;
        names.clear();
        for (pugi::xml_attribute a = node.first_attribute(); a; a = a.next_attribute())
            names.emplace_back(a.name());
        std::sort(names.begin(), names.end());
        if (std::adjacent_find(names.begin(), names.end()) == names.end())
            return true;
        offset = node.offset_debug();
        failure = "Duplicate attribute";
        return false;
    });
    return failure;
}

class StringWriter : public pugi::xml_writer
{
public:
    explicit StringWriter(std::string& text) : mText(text) {}
    void write(const void* data, size_t size) override { mText.append(static_cast<const char*>(data), size); }

private:
    std::string& mText;
};

// The documents that have a file, so Terminate can name the unsaved ones.
// Never destroyed: documents may die during static destruction.
std::mutex& OpenDocumentsMutex()
{
    static auto* mutex = new std::mutex;
    return *mutex;
}
std::set<korva::XMLDocumentData*>& OpenDocuments()
{
    static auto* documents = new std::set<korva::XMLDocumentData*>;
    return *documents;
}

} // namespace

// ---------------------------------------------------------------------------

namespace korva {

std::string EncodeXMLName(std::string_view name)
{
    if (IsPlainAsciiName(name))
        return std::string(name);
    if (name.empty())
        return "_x_";
    // Underscores stand as they are ("grid_x" is a name people write by
    // hand) unless the result would read back otherwise; then every "_x" of
    // the name is escaped, which always reads back.
    std::string encoded = EncodeName(name, false);
    if (DecodeXMLName(encoded) != name)
        encoded = EncodeName(name, true);
    return encoded;
}

std::string DecodeXMLName(std::string_view name)
{
    if (name == "_x_")
        return std::string();
    if (name.find("_x") == std::string_view::npos)
        return std::string(name);
    std::string decoded;
    decoded.reserve(name.size());
    for (std::size_t i = 0; i < name.size();) {
        if (name[i] == '_' && i + 1 < name.size() && name[i + 1] == 'x') {
            std::size_t end = i + 2;
            unsigned long value = 0;
            while (end < name.size() && end - (i + 2) < 6 && HexValue(name[end]) >= 0)
                value = value * 16 + static_cast<unsigned long>(HexValue(name[end++]));
            const std::size_t digits = end - (i + 2);
            // A NUL cannot be part of a name that callers pass as C text.
            if (end < name.size() && name[end] == '_' && value != 0) {
                if (digits == 2) {
                    decoded += static_cast<char>(value);
                    i = end + 1;
                    continue;
                }
                if ((digits == 4 || digits == 6) && value <= 0x10FFFF && !(value >= 0xD800 && value <= 0xDFFF)) {
                    korva::AppendUtf8(decoded, static_cast<char32_t>(value));
                    i = end + 1;
                    continue;
                }
            }
        }
        decoded += name[i++];
    }
    return decoded;
}

struct XMLDocumentData
{
    pugi::xml_document document;
    std::string path;          // empty: no file
    bool fileExists = false;   // the file holds what was read or last written
    bool dirty = false;        // changed since read or last written
    XMLSection* views = nullptr;
    // The element of the last attribute lookup and the attribute after the one
    // found there: reading keys in their stored order costs one step each.
    // A big element also gets an index of its attributes by name.
    static constexpr std::size_t kIndexThreshold = 32;
    pugi::xml_node_struct* hintNode = nullptr;
    pugi::xml_attribute hint;
    std::unordered_map<std::string_view, pugi::xml_attribute_struct*> index;
    bool indexed = false;
    // Stored names that the encoder would not write, so lookups must decode.
    bool looseNames = false;
    // The last indexed section found or made: going through sections 1, 2,
    // 3 ... of one name costs one step each, not a search from the first.
    pugi::xml_node_struct* sectionParent = nullptr;
    std::string sectionName;
    int sectionIndex = 0;
    pugi::xml_node_struct* section = nullptr;

    XMLDocumentData() = default;
    XMLDocumentData(const XMLDocumentData&) = delete;
    XMLDocumentData& operator=(const XMLDocumentData&) = delete;

    ~XMLDocumentData()
    {
        if (!path.empty()) {
            std::lock_guard<std::mutex> lock(OpenDocumentsMutex());
            OpenDocuments().erase(this);
        }
    }

    void SetPath(const std::string& file)
    {
        path = file;
        std::lock_guard<std::mutex> lock(OpenDocumentsMutex());
        OpenDocuments().insert(this);
    }

    pugi::xml_attribute FindAttribute(pugi::xml_node node, const Name& name)
    {
        if (hintNode != node.internal_object()) {
            ForgetHint();
            hintNode = node.internal_object();
        }
        const char* stored = name.stored.c_str();
        pugi::xml_attribute found;
        if (hint && std::strcmp(hint.name(), stored) == 0) {
            found = hint;
        } else if (indexed) {
            const auto it = index.find(stored);
            if (it != index.end())
                found = pugi::xml_attribute(it->second);
        } else {
            std::size_t count = 0;
            for (pugi::xml_attribute a = node.first_attribute(); a && !found; a = a.next_attribute(), ++count)
                if (std::strcmp(a.name(), stored) == 0)
                    found = a;
            // A miss in a big section costs a full search every time, which
            // makes filling a section quadratic; such sections get an index.
            if (!found && count > kIndexThreshold)
                BuildIndex(node);
        }
        if (!found && name.loose)
            for (pugi::xml_attribute a = node.first_attribute(); a && !found; a = a.next_attribute())
                if (name.Matches(a.name()))
                    found = a;
        if (found)
            hint = found.next_attribute();
        return found;
    }

    // Appends an attribute to `node`, keeping the index in step.
    pugi::xml_attribute AppendAttribute(pugi::xml_node node, const char* name)
    {
        pugi::xml_attribute attribute = node.append_attribute(name);
        if (attribute && indexed && hintNode == node.internal_object())
            index.emplace(attribute.name(), attribute.internal_object());
        return attribute;
    }

    void BuildIndex(pugi::xml_node node)
    {
        index.clear();
        for (pugi::xml_attribute a = node.first_attribute(); a; a = a.next_attribute())
            index.emplace(a.name(), a.internal_object());
        indexed = true;
    }

    Name MakeName(const char* name) const { return Name(name, looseNames); }

    // Called whenever attributes or elements go, since the hint or the index
    // could point at them.
    void ForgetHint()
    {
        hintNode = nullptr;
        hint = pugi::xml_attribute();
        if (indexed) {
            index.clear();
            indexed = false;
        }
    }

    // Removes `node` from the tree after leaving every view on it or below it
    // on nothing; the view on `node` itself keeps its parent as the anchor.
    void Remove(pugi::xml_node node)
    {
        pugi::xml_node parent = node.parent();
        pugi::xml_node_struct* removed = node.internal_object();
        for (XMLSection* view = views; view; view = view->mNextView) {
            if (view->mNode && IsSelfOrDescendant(view->mNode, removed)) {
                view->mAnchor = view->mNode == removed ? parent.internal_object() : nullptr;
                view->mNode = nullptr;
            } else if (view->mAnchor && IsSelfOrDescendant(view->mAnchor, removed)) {
                view->mAnchor = nullptr;
            }
        }
        ForgetHint();
        section = nullptr;
        parent.remove_child(node);
        dirty = true;
    }

    // The `index`-th section element called `name` of `node` (from 1), or a
    // null node; with `create`, the missing ones up to it are appended.
    pugi::xml_node IndexedSection(pugi::xml_node node, const Name& name, int index, bool create)
    {
        pugi::xml_node found;
        int count = 0;
        if (section && !name.loose && sectionParent == node.internal_object() && sectionIndex < index &&
            sectionName == name.stored) {
            // Sections are only ever appended, so those before the remembered one stand.
            found = pugi::xml_node(section);
            count = sectionIndex;
            for (pugi::xml_node c = found.next_sibling(name.stored.c_str()); c && count < index;
                 c = c.next_sibling(name.stored.c_str()))
                if (IsSectionElement(c)) {
                    found = c;
                    ++count;
                }
        } else {
            ForEachNamed(node, name, [&](pugi::xml_node c) {
                if (IsSectionElement(c)) {
                    found = c;
                    ++count;
                }
                return count < index;
            });
        }
        for (; create && count < index; ++count) {
            found = node.append_child(name.stored.c_str());
            if (!found)
                return found;
            dirty = true;
        }
        if (count < index)
            return pugi::xml_node();
        sectionParent = node.internal_object();
        sectionName = name.stored;
        sectionIndex = index;
        section = found.internal_object();
        return found;
    }
};

} // namespace korva

// ---------------------------------------------------------------------------
// Construction

void XMLSection::NewDocument()
{
    mDocument = std::make_shared<korva::XMLDocumentData>();
    pugi::xml_node declaration = mDocument->document.append_child(pugi::node_declaration);
    declaration.append_attribute("version").set_value("1.0");
    declaration.append_attribute("encoding").set_value("UTF-8");
    mNode = mDocument->document.append_child(kRootName).internal_object();
    Attach();
}

void XMLSection::LoadBuffer(const char* data, std::size_t size, const std::string& what, unsigned int formatId)
{
    auto document = std::make_shared<korva::XMLDocumentData>();
    // Parsed as a fragment so that what pugixml would otherwise let pass at
    // the top (a second root, stray text, which it would drop) can be refused.
    const pugi::xml_parse_result result = document->document.load_buffer(data, size, kParseOptions | pugi::parse_fragment);
    std::ptrdiff_t offset = result.offset;
    const char* reason = result ? CheckWellFormed(document->document, offset) : result.description();
    if (reason) {
        // pugixml counts the offset in its own converted buffer; for UTF-8
        // input, which settings files are, it is the byte offset.
        int line = 1, column = 1;
        for (std::ptrdiff_t i = 0; i < offset && static_cast<std::size_t>(i) < size; ++i) {
            if (data[i] == '\n') {
                ++line;
                column = 1;
            } else {
                ++column;
            }
        }
        throw Exception(TsString::Format(formatId, what.c_str(), reason, line, column));
    }
    // The document is written back as UTF-8, whatever it was read as.
    pugi::xml_node declaration = document->document.first_child();
    if (declaration.type() == pugi::node_declaration && declaration.attribute("encoding"))
        declaration.attribute("encoding").set_value("UTF-8");
    document->looseNames = HasLooseNames(document->document);
    mDocument = std::move(document);
    mNode = mDocument->document.document_element().internal_object();
    Attach();
}

XMLSection::XMLSection()
{
    NewDocument();
}

XMLSection::XMLSection(const char* path, bool create)
{
    if (!path || !*path)
        throw Exception(LanguageString::Get(kNoFileName));
    std::string content;
    const int error = korva::ReadWholeFile(path, content);
    if (error == ENOENT || (error == 0 && content.empty())) {
        if (error == ENOENT && !create)
            throw Exception(TsString::Format(kFileMissing, path));
        NewDocument();
    } else if (error != 0) {
        throw Exception(TsString::Format(kFileUnreadable, path, std::strerror(error)));
    } else {
        LoadBuffer(content.data(), content.size(), path, kFileNotXML);
        mDocument->fileExists = true;
    }
    mDocument->SetPath(path);
}

XMLSection::XMLSection(unsigned int resourceId, bool create)
{
    std::size_t size = 0;
    const char* data = nullptr;
    if (const korva::ResourceModule* module = LanguageString::GetModule())
        data = module->FindResource(resourceId, "XML", &size);
    if (!data)
        data = korva::EnglishResourceModule().FindResource(resourceId, "XML", &size);
    if (!data || size == 0) {
        if (!create)
            throw Exception(TsString::Format(kResourceMissing, resourceId));
        NewDocument();
        return;
    }
    LoadBuffer(data, size, std::to_string(resourceId), kResourceNotXML);
}

XMLSection::XMLSection(XMLInputStream* stream, bool create)
{
    std::string content;
    if (stream) {
        char buffer[65536];
        for (;;) {
            const long count = stream->Read(buffer, sizeof buffer);
            if (count < 0)
                throw Exception(TsString::Format(kStreamUnreadable, stream->GetName().c_str()));
            if (count == 0)
                break;
            content.append(buffer, static_cast<std::size_t>(count));
        }
    }
    if (content.empty()) {
        if (!create)
            throw Exception(TsString::Format(kStreamMissing, stream ? stream->GetName().c_str() : "(null)"));
        NewDocument();
        return;
    }
    LoadBuffer(content.data(), content.size(), stream->GetName(), kStreamNotXML);
}

XMLSection::XMLSection(std::shared_ptr<korva::XMLDocumentData> document, pugi::xml_node_struct* node)
    : mDocument(std::move(document)), mNode(node)
{
    Attach();
}

XMLSection::XMLSection(const XMLSection& other)
    : ConfigurationSection(other), mDocument(other.mDocument), mNode(other.mNode), mAnchor(other.mAnchor)
{
    Attach();
}

XMLSection& XMLSection::operator=(const XMLSection& other)
{
    if (this != &other) {
        Detach();
        mDocument = other.mDocument;
        mNode = other.mNode;
        mAnchor = other.mAnchor;
        Attach();
    }
    return *this;
}

XMLSection::~XMLSection()
{
    Detach();
}

void XMLSection::Attach()
{
    mPreviousView = nullptr;
    mNextView = mDocument->views;
    if (mNextView)
        mNextView->mPreviousView = this;
    mDocument->views = this;
}

void XMLSection::Detach()
{
    if (mPreviousView)
        mPreviousView->mNextView = mNextView;
    else
        mDocument->views = mNextView;
    if (mNextView)
        mNextView->mPreviousView = mPreviousView;
    mPreviousView = mNextView = nullptr;
}

// ---------------------------------------------------------------------------
// Process-wide

void XMLSection::Initialize()
{
    msInitialized = true;
}

void XMLSection::Terminate()
{
    if (!msInitialized.exchange(false))
        return;
    std::lock_guard<std::mutex> lock(OpenDocumentsMutex());
    for (const korva::XMLDocumentData* document : OpenDocuments())
        if (document->dirty)
            Log::WriteMessage("XMLSection", "Terminate",
                              ("The settings file " + document->path + " has changes that were never written.").c_str(),
                              Log::eLogicFailure);
}

bool XMLSection::IsInitialized()
{
    return msInitialized;
}

const char* XMLSection::TessmarkXMLExtension()
{
    return "xml";
}

// ---------------------------------------------------------------------------
// Writing the document

bool XMLSection::Flush(std::string& text, bool indent) const
{
    text.clear();
    StringWriter writer(text);
    mDocument->document.save(writer, "\t", indent ? pugi::format_indent : pugi::format_raw, pugi::encoding_utf8);
    return true;
}

bool XMLSection::Flush() const
{
    korva::XMLDocumentData& document = *mDocument;
    if (document.path.empty() || (document.fileExists && !document.dirty))
        return true;
    std::string text;
    Flush(text, true);
    std::string error;
    if (!SafeFileWriter::Write(document.path, text, &error)) {
        Log::WriteMessage("XMLSection", "Flush", error.c_str(), Log::eSystemCallFailed);
        return false;
    }
    document.fileExists = true;
    document.dirty = false;
    return true;
}

const std::string& XMLSection::GetFilePath() const
{
    return mDocument->path;
}

// ---------------------------------------------------------------------------
// Moving

ConfigurationSection* XMLSection::Copy() const
{
    return new XMLSection(*this);
}

void XMLSection::ChangeSection(const char* name)
{
    if (!name)
        return;
    pugi::xml_node parent = mNode ? Node(mNode).parent() : Node(mAnchor);
    if (!parent || parent.type() != pugi::node_element)
        return;
    const Name sibling = mDocument->MakeName(name);
    pugi::xml_node found = FindSection(parent, sibling, 1);
    if (!found) {
        found = parent.append_child(sibling.stored.c_str());
        if (!found)
            return;
        mDocument->dirty = true;
    }
    mNode = found.internal_object();
    mAnchor = nullptr;
}

bool XMLSection::ChangeSubSection(const char* name, int index)
{
    if (!name || !mNode)
        return false;
    const pugi::xml_node child =
        mDocument->IndexedSection(Node(mNode), mDocument->MakeName(name), index == -1 ? 1 : index, false);
    if (!child)
        return false;
    mNode = child.internal_object();
    return true;
}

bool XMLSection::ChangeSubSection(const char* name)
{
    return ChangeSubSection(name, -1);
}

ConfigurationSection* XMLSection::CreateSubSection(const char* name, int index) const
{
    if (index == -1)
        index = 1;
    if (!name || !mNode || index < 1)
        return nullptr;
    const pugi::xml_node found = mDocument->IndexedSection(Node(mNode), mDocument->MakeName(name), index, true);
    if (!found)
        return nullptr;
    return new XMLSection(mDocument, found.internal_object());
}

ConfigurationSection* XMLSection::CreateSubSection(const char* name) const
{
    return CreateSubSection(name, -1);
}

std::vector<std::shared_ptr<ConfigurationSection>>* XMLSection::GetAllSubSections(const char* name) const
{
    auto* sections = new std::vector<std::shared_ptr<ConfigurationSection>>();
    if (!name || !mNode)
        return sections;
    ForEachNamed(Node(mNode), mDocument->MakeName(name), [&](pugi::xml_node c) {
        if (IsSectionElement(c))
            sections->push_back(std::shared_ptr<ConfigurationSection>(new XMLSection(mDocument, c.internal_object())));
        return true;
    });
    return sections;
}

int XMLSection::NumSubSections(const char* name) const
{
    if (!name || !mNode)
        return 0;
    return CountSections(Node(mNode), mDocument->MakeName(name));
}

// ---------------------------------------------------------------------------
// Deleting

bool XMLSection::DeleteKey(const char* key)
{
    if (!key || !mNode)
        return false;
    const Name name = mDocument->MakeName(key);
    pugi::xml_node node = Node(mNode);
    bool removed = false;
    if (pugi::xml_attribute attribute = mDocument->FindAttribute(node, name)) {
        mDocument->ForgetHint();
        node.remove_attribute(attribute);
        mDocument->dirty = true;
        removed = true;
    }
    while (pugi::xml_node element = FindKeyElement(node, name)) {
        mDocument->Remove(element);
        removed = true;
    }
    return removed;
}

bool XMLSection::DeleteSection()
{
    if (!mNode)
        return false;
    pugi::xml_node node = Node(mNode);
    if (node.parent().type() == pugi::node_element) {
        mDocument->Remove(node);
        return true;
    }
    // The root element: a document must keep one, so it is emptied instead.
    while (pugi::xml_node child = node.first_child())
        mDocument->Remove(child);
    mDocument->ForgetHint();
    node.remove_attributes();
    mDocument->dirty = true;
    return true;
}

// ---------------------------------------------------------------------------
// Asking

bool XMLSection::IsEmpty() const
{
    if (!mNode)
        return true;
    const pugi::xml_node node = Node(mNode);
    if (node.first_attribute())
        return false;
    for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling())
        if (child.type() == pugi::node_element)
            return false;
    return true;
}

bool XMLSection::HasSection(const char* name, int index) const
{
    if (!name || !mNode)
        return false;
    return FindSection(Node(mNode), mDocument->MakeName(name), index == -1 ? 1 : index);
}

bool XMLSection::HasKey(const char* key) const
{
    if (!key || !mNode)
        return false;
    const Name name = mDocument->MakeName(key);
    const pugi::xml_node node = Node(mNode);
    return mDocument->FindAttribute(node, name) || FindKeyElement(node, name);
}

bool XMLSection::ReadKey(const char* key, std::string& value) const
{
    if (!key || !mNode)
        return false;
    const Name name = mDocument->MakeName(key);
    const pugi::xml_node node = Node(mNode);
    if (const pugi::xml_attribute attribute = mDocument->FindAttribute(node, name)) {
        value = attribute.value();
        return true;
    }
    if (const pugi::xml_node element = FindKeyElement(node, name)) {
        value = KeyElementText(element);
        return true;
    }
    return false;
}

bool XMLSection::WriteKey(const char* key, const char* value)
{
    if (!key || !value || !mNode)
        return false;
    const Name name = mDocument->MakeName(key);
    pugi::xml_node node = Node(mNode);
    pugi::xml_attribute attribute = mDocument->FindAttribute(node, name);
    if (!attribute) {
        attribute = mDocument->AppendAttribute(node, name.stored.c_str());
        if (!attribute)
            return false;
        mDocument->dirty = true;
    }
    if (std::strcmp(attribute.value(), value) != 0) {
        if (!attribute.set_value(value))
            return false;
        mDocument->dirty = true;
    }
    // One key, one place: the attribute now speaks for a hand-written element.
    while (pugi::xml_node element = FindKeyElement(node, name))
        mDocument->Remove(element);
    return true;
}

std::vector<std::string> XMLSection::GetSectionNames() const
{
    std::vector<std::string> names;
    if (!mNode)
        return names;
    for (pugi::xml_node child = Node(mNode).first_child(); child; child = child.next_sibling())
        if (IsSectionElement(child))
            names.push_back(korva::DecodeXMLName(child.name()));
    return names;
}

std::vector<std::string> XMLSection::GetKeyNames() const
{
    std::vector<std::string> names;
    if (!mNode)
        return names;
    const pugi::xml_node node = Node(mNode);
    for (pugi::xml_attribute attribute = node.first_attribute(); attribute; attribute = attribute.next_attribute())
        names.push_back(korva::DecodeXMLName(attribute.name()));
    // Text-only elements follow, unless an attribute of the name hides them.
    const std::size_t attributes = names.size();
    std::set<std::string> hidden;
    for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling()) {
        if (!IsKeyElement(child))
            continue;
        if (hidden.empty())
            hidden.insert(names.begin(), names.begin() + static_cast<std::ptrdiff_t>(attributes));
        std::string name = korva::DecodeXMLName(child.name());
        if (hidden.insert(name).second)
            names.push_back(std::move(name));
    }
    return names;
}

// ---------------------------------------------------------------------------
// Copying

bool XMLSection::WriteToSection(ConfigurationSection* target) const
{
    if (!target || !mNode)
        return false;

    // A target in the same document could be inside this section, or this
    // section inside it, and the copy would change what is being read: copy
    // from a snapshot instead.
    if (const auto* view = dynamic_cast<const XMLSection*>(target); view && view->mDocument == mDocument) {
        XMLSection snapshot;
        snapshot.mDocument->looseNames = mDocument->looseNames;
        pugi::xml_document& copy = snapshot.mDocument->document;
        copy.remove_child(Node(snapshot.mNode));
        snapshot.mNode = copy.append_copy(Node(mNode)).internal_object();
        return snapshot.mNode && snapshot.WriteToSection(target);
    }

    // Iterative, so that deep documents cannot exhaust the stack.
    struct Pending
    {
        pugi::xml_node source;
        ConfigurationSection* target;
    };
    // Every section made here lives to the end, since a back-end's child may
    // depend on its parent object (a registry child opens below the parent's key).
    std::vector<std::unique_ptr<ConfigurationSection>> created;
    std::vector<Pending> pending{{Node(mNode), target}};
    bool complete = true;
    while (!pending.empty()) {
        const Pending item = pending.back();
        pending.pop_back();
        const pugi::xml_node source = item.source;
        ConfigurationSection* to = item.target;

        // Through a view, so the keys are exactly those that the section shows.
        const XMLSection view(mDocument, source.internal_object());
        for (const std::string& key : view.GetKeyNames()) {
            std::string value;
            complete &= view.ReadKey(key.c_str(), value) && to->WriteKey(key.c_str(), value.c_str());
        }

        if (!to->SupportsSubSections())
            continue;
        // Counted by plain name: two stored names may stand for one.
        std::vector<std::pair<pugi::xml_node, std::string>> children;
        std::unordered_map<std::string, int> total;
        for (pugi::xml_node child = source.first_child(); child; child = child.next_sibling())
            if (IsSectionElement(child)) {
                children.emplace_back(child, korva::DecodeXMLName(child.name()));
                ++total[children.back().second];
            }
        std::unordered_map<std::string, int> seen;
        const std::size_t first = pending.size();
        for (const auto& [child, name] : children) {
            const int index = ++seen[name];
            ConfigurationSection* section = total[name] == 1 ? to->CreateSubSection(name.c_str())
                                                             : to->CreateSubSection(name.c_str(), index);
            if (!section) {
                complete = false;
                continue;
            }
            created.emplace_back(section);
            pending.push_back({child, section});
        }
        // Taken from the back: reverse this node's children to copy in document order.
        std::reverse(pending.begin() + static_cast<std::ptrdiff_t>(first), pending.end());
    }
    return complete;
}
