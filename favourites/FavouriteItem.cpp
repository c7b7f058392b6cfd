#include <KORVAutlwin/favourites/FavouriteItem.h>

#include <KORVAutlwin/favourites/FavouriteApplication.h>
#include <KORVAutlwin/favourites/FavouriteBuilder.h>
#include <KORVAutlwin/favourites/FavouriteCommandItem.h>
#include <KORVAutlwin/favourites/FavouriteFileItem.h>
#include <KORVAutlwin/favourites/FavouriteFolderItem.h>
#include <KORVAutlwin/favourites/FavouriteItemHandle.h>
#include <KORVAutlwin/favourites/SeparatorItem.h>

#include <KORVAutl/ConfigurationSection.h>
#include <KORVAutl/LanguageString.h>

#include <QFileInfo>
#include <QString>

namespace {

std::string Trimmed(const char* text)
{
    static const char blanks[] = " \t\n\v\f\r";
    const std::string value = text ? text : "";
    const std::size_t first = value.find_first_not_of(blanks);
    if (first == std::string::npos)
        return {};
    return value.substr(first, value.find_last_not_of(blanks) - first + 1);
}

// Command strings are "description\ntip".
std::string CommandString(unsigned int commandId)
{
    return LanguageString::Get(commandId);
}

} // namespace

// --- FavouriteItem --------------------------------------------------------

FavouriteItem::~FavouriteItem() = default;

void FavouriteItem::Save(ConfigurationSection* section) const
{
    section->WriteKey("Name", name.c_str());
    section->WriteKey("Type", GetType().c_str());
}

void FavouriteItem::Load(const ConfigurationSection* section)
{
    section->ReadKey("Name", name);
    section->ReadKey("Type", type);
}

bool FavouriteItem::IsGlobal() const { return false; }
bool FavouriteItem::IsDraggable() const { return true; }
bool FavouriteItem::Enable() { return true; }
QWidget* FavouriteItem::Open() { return nullptr; }
std::string FavouriteItem::GetToolTipText() const { return name; }

void FavouriteItem::SetName(const char* newName) { name = Trimmed(newName); }

// --- FavouriteFolderItem --------------------------------------------------

FavouriteFolderItem::FavouriteFolderItem(const char* folderName, const char* emptyText)
{
    SetName(folderName);
    SetEmptyFolderText(emptyText);
}

void FavouriteFolderItem::Save(ConfigurationSection* section) const
{
    FavouriteItem::Save(section);
    section->WriteBool("TreatAsItem", treatAsItem);
    section->WriteKey("EmptyFolderText", emptyFolderText.c_str());
    section->WriteKey("DefaultItemType", defaultItemType.c_str());
}

void FavouriteFolderItem::Load(const ConfigurationSection* section)
{
    FavouriteItem::Load(section);
    section->ReadBool("TreatAsItem", treatAsItem);
    section->ReadKey("EmptyFolderText", emptyFolderText);
    section->ReadKey("DefaultItemType", defaultItemType);
}

FavouriteItem* FavouriteFolderItem::Copy() const { return new FavouriteFolderItem(*this); }
std::string FavouriteFolderItem::GetType() const { return "FavouritesFolder"; }
bool FavouriteFolderItem::IsGlobal() const { return true; }

// --- FavouriteFileItem ----------------------------------------------------

FavouriteFileItem::FavouriteFileItem(const char* fileName, const char* path)
    : file(path ? path : "")
{
    SetName(fileName);
}

void FavouriteFileItem::Save(ConfigurationSection* section) const
{
    FavouriteItem::Save(section);
    section->WriteKey("File", file.c_str());
}

void FavouriteFileItem::Load(const ConfigurationSection* section)
{
    FavouriteItem::Load(section);
    section->ReadKey("File", file);
}

FavouriteItem* FavouriteFileItem::Copy() const { return new FavouriteFileItem(*this); }
std::string FavouriteFileItem::GetType() const { return "FileItem"; }
bool FavouriteFileItem::IsGlobal() const { return true; }

bool FavouriteFileItem::Enable()
{
    return !file.empty() && QFileInfo::exists(QString::fromStdString(file));
}

QWidget* FavouriteFileItem::Open()
{
    FavouriteApplication& application = FavouriteApplication::Get();
    if (!Enable()) {
        if (application.messageBox)
            application.messageBox("The file has been moved or removed.", 0);
        return nullptr;
    }
    if (application.openDocumentFile)
        application.openDocumentFile(file);
    // The document's frame is not looked for: opening a file answers null.
    return nullptr;
}

std::string FavouriteFileItem::GetToolTipText() const { return file; }

// --- FavouriteCommandItem -------------------------------------------------

FavouriteCommandItem::FavouriteCommandItem(const char* commandName, unsigned int id)
    : commandId(static_cast<int>(id))
{
    SetName(commandName);
}

FavouriteCommandItem::FavouriteCommandItem(unsigned int id)
    : commandId(static_cast<int>(id))
{
    std::string text = CommandString(id);
    if (text.empty())
        text = LanguageString::Get(kFallbackNameId);
    const std::size_t lineFeed = text.find('\n');
    if (lineFeed != std::string::npos)
        text.erase(0, lineFeed + 1);
    SetName(text.c_str());
}

void FavouriteCommandItem::Save(ConfigurationSection* section) const
{
    FavouriteItem::Save(section);
    section->WriteInt("CommandID", commandId);
}

void FavouriteCommandItem::Load(const ConfigurationSection* section)
{
    FavouriteItem::Load(section);
    section->ReadInt("CommandID", commandId);
}

FavouriteItem* FavouriteCommandItem::Copy() const { return new FavouriteCommandItem(*this); }
std::string FavouriteCommandItem::GetType() const { return "CommandItem"; }
bool FavouriteCommandItem::IsGlobal() const { return true; }

bool FavouriteCommandItem::Enable()
{
    const FavouriteApplication& application = FavouriteApplication::Get();
    return application.isCommandEnabled && application.isCommandEnabled(static_cast<unsigned int>(commandId));
}

QWidget* FavouriteCommandItem::Open()
{
    const FavouriteApplication& application = FavouriteApplication::Get();
    return application.runCommand ? application.runCommand(commandId) : nullptr;
}

std::string FavouriteCommandItem::GetToolTipText() const
{
    std::string description = CommandString(static_cast<unsigned int>(commandId));
    const std::size_t lineFeed = description.find('\n');
    if (lineFeed != std::string::npos)
        description.erase(lineFeed);
    if (!description.empty()
        && QString::fromStdString(description).compare(QString::fromStdString(GetName()), Qt::CaseInsensitive) != 0)
        return GetName() + "\n\n" + description;
    return GetName();
}

// --- FavouriteItemHandle --------------------------------------------------

FavouriteItemHandle::FavouriteItemHandle(const FavouriteItem& held)
    : FavouriteItem(held), item(held.Copy())
{
}

FavouriteItemHandle::FavouriteItemHandle(const FavouriteItemHandle& other)
    : FavouriteItem(other), item(other.Copy())
{
}

FavouriteItemHandle& FavouriteItemHandle::operator=(const FavouriteItem& held)
{
    if (&held != this) {
        FavouriteItem* copy = held.Copy();
        FavouriteItem::operator=(held);
        delete item;
        item = copy;
    }
    return *this;
}

FavouriteItemHandle& FavouriteItemHandle::operator=(const FavouriteItemHandle& other)
{
    return *this = static_cast<const FavouriteItem&>(other);
}

FavouriteItemHandle::~FavouriteItemHandle() { delete item; }

FavouriteItem* FavouriteItemHandle::Copy() const { return item ? item->Copy() : nullptr; }
std::string FavouriteItemHandle::GetType() const { return item ? item->GetType() : std::string(); }

// --- SeparatorItem --------------------------------------------------------

void SeparatorItem::Save(ConfigurationSection*) const {}
void SeparatorItem::Load(const ConfigurationSection*) {}
FavouriteItem* SeparatorItem::Copy() const { return nullptr; }
std::string SeparatorItem::GetType() const { return "SeparatorItem"; }
bool SeparatorItem::IsDraggable() const { return false; }

// --- The builder's prototypes ---------------------------------------------

// Each prototype is made at load by its class's private constructor, which
// enters a copy of itself in the builder; so the three kinds are known before
// anything loads.
FavouriteFolderItem::FavouriteFolderItem() { FavouriteBuilder::Instance().Add(GetType(), this); }
FavouriteFileItem::FavouriteFileItem() { FavouriteBuilder::Instance().Add(GetType(), this); }
FavouriteCommandItem::FavouriteCommandItem() { FavouriteBuilder::Instance().Add(GetType(), this); }

const FavouriteFolderItem FavouriteFolderItem::msPrototype;
const FavouriteFileItem FavouriteFileItem::msPrototype;
const FavouriteCommandItem FavouriteCommandItem::msPrototype;

// --- FavouriteApplication -------------------------------------------------

FavouriteApplication& FavouriteApplication::Get()
{
    static FavouriteApplication answers;
    return answers;
}
