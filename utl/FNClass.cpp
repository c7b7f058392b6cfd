#include <KORVAutl/FNClass.h>

namespace {
// Splits a file name at the dot of its extension; a leading dot starts none.
void SplitName(const std::string& file, std::string& name, std::string& extension)
{
    const auto dot = file.rfind('.');
    if (dot == std::string::npos || dot == 0) {
        name = file;
        extension.clear();
    } else {
        name = file.substr(0, dot);
        extension = file.substr(dot);
    }
}
} // namespace

void FNClass::Split(const char* path)
{
    const std::string text = path ? path : "";
    const auto slash = text.rfind('/');
    mDirectory = slash == std::string::npos ? std::string() : text.substr(0, slash + 1);
    SplitName(slash == std::string::npos ? text : text.substr(slash + 1), mName, mExtension);
}

std::string FNClass::Merge() const
{
    return mDirectory + mName + mExtension;
}

std::string FNClass::GetNameAndExt() const
{
    return mName + mExtension;
}

void FNClass::SetNameAndExt(const char* nameAndExt)
{
    SplitName(nameAndExt ? nameAndExt : "", mName, mExtension);
}

void FNClass::SetDirectory(const char* directory)
{
    mDirectory = directory ? directory : "";
    if (!mDirectory.empty() && mDirectory.back() != '/')
        mDirectory += '/';
}

void FNClass::SetExtension(const char* extension)
{
    mExtension = extension ? extension : "";
    if (!mExtension.empty() && mExtension[0] != '.')
        mExtension.insert(0, 1, '.');
}
