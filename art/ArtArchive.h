#pragma once
// Pieces of the art description's text archive that the classes of an art
// collection share. Only the sources of the art classes include this; it pulls
// in Boost.Serialization.
//
// The layout is the one the archive library gives by itself to classes with
// class information and selective tracking: a class record (tracking flag,
// version) before the first object of each class. Two things the library does
// not do for us:
// - it does not refuse class versions newer than the reader knows, so every
//   load checks the version itself;
// - it sizes strings and vectors from the counts in the file before reading
//   them, so a damaged count could ask for gigabytes. Strings and vectors are
//   therefore read piece by piece, growing only with data actually present.

#include <boost/archive/archive_exception.hpp>
#include <boost/serialization/collection_size_type.hpp>
#include <boost/serialization/item_version_type.hpp>
#include <boost/serialization/library_version_type.hpp>
#include <boost/serialization/nvp.hpp>
#include <boost/serialization/split_member.hpp>
#include <boost/serialization/string.hpp>
#include <boost/serialization/version.hpp>

#include <algorithm>
#include <cstddef>
#include <istream>
#include <string>
#include <vector>

namespace korva {

/// Throws the archive library's unsupported_class_version for a class written
/// by a newer release: every class of the art description has version 0.
inline void CheckArtClassVersion(unsigned int version, const char* className)
{
    if (version > 0)
        throw boost::archive::archive_exception(boost::archive::archive_exception::unsupported_class_version,
                                                className);
}

/// The stream under an input archive of the art description, attached to the
/// archive as one of its helpers so that strings can be read in pieces. An
/// archive without it reads strings the library's way.
struct ArtArchiveSource
{
    std::istream* stream = nullptr;

    static void* Key()
    {
        static char key;
        return &key;
    }
    template <class Archive>
    static void Attach(Archive& archive, std::istream& stream)
    {
        archive.template get_helper<ArtArchiveSource>(Key()).stream = &stream;
    }
};

/// A text as the class `CString` of the description: a class record before its
/// first object, then the text up to its first null character as the library
/// stores a std::string (decimal length, one blank, the bytes).
class ArtCString
{
public:
    explicit ArtCString(std::string& text) : mText(text) {}

    template <class Archive>
    void save(Archive& archive, const unsigned int) const
    {
        const std::string stored(mText.c_str());
        archive << boost::serialization::make_nvp("text", stored);
    }

    template <class Archive>
    void load(Archive& archive, const unsigned int version)
    {
        CheckArtClassVersion(version, "CString");
        std::istream* stream = archive.template get_helper<ArtArchiveSource>(ArtArchiveSource::Key()).stream;
        if (!stream) {
            archive >> boost::serialization::make_nvp("text", mText);
            return;
        }
        std::size_t size = 0;
        archive >> boost::serialization::make_nvp("size", size);
        stream->get(); // the blank between length and bytes
        std::string text;
        constexpr std::size_t kPiece = 64 * 1024;
        while (text.size() < size) {
            const std::size_t old = text.size();
            const std::size_t piece = std::min(kPiece, size - old);
            text.resize(old + piece);
            stream->read(text.data() + old, static_cast<std::streamsize>(piece));
            if (static_cast<std::size_t>(stream->gcount()) != piece)
                throw boost::archive::archive_exception(boost::archive::archive_exception::input_stream_error);
        }
        mText = std::move(text);
    }

    BOOST_SERIALIZATION_SPLIT_MEMBER()

private:
    std::string& mText;
};

/// A vector of class objects as the library stores std::vector: a class record
/// of the vector's own, the element count, the item version, the elements.
template <class T>
class ArtVector
{
public:
    explicit ArtVector(std::vector<T>& items) : mItems(items) {}

    template <class Archive>
    void save(Archive& archive, const unsigned int) const
    {
        const boost::serialization::collection_size_type count(mItems.size());
        archive << BOOST_SERIALIZATION_NVP(count);
        const boost::serialization::item_version_type item_version(boost::serialization::version<T>::value);
        archive << BOOST_SERIALIZATION_NVP(item_version);
        for (const T& item : mItems)
            archive << boost::serialization::make_nvp("item", item);
    }

    template <class Archive>
    void load(Archive& archive, const unsigned int version)
    {
        CheckArtClassVersion(version, "std::vector");
        boost::serialization::collection_size_type count;
        archive >> BOOST_SERIALIZATION_NVP(count);
        // Releases before 1.36 (library version 4) wrote no item version.
        if (boost::serialization::library_version_type(3) < archive.get_library_version()) {
            boost::serialization::item_version_type item_version(0);
            archive >> BOOST_SERIALIZATION_NVP(item_version);
        }
        std::vector<T> items;
        for (std::size_t i = 0; i < count; ++i) {
            items.emplace_back();
            archive >> boost::serialization::make_nvp("item", items.back());
        }
        mItems = std::move(items);
    }

    BOOST_SERIALIZATION_SPLIT_MEMBER()

private:
    std::vector<T>& mItems;
};

} // namespace korva
