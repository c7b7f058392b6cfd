#pragma once
/// \class PictureInfo
/// One painting of an art collection: its title and the name of the stream of
/// the collection file that holds it as a JPEG picture.

#include <string>

namespace boost::serialization { class access; }

class PictureInfo
{
public:
    PictureInfo() = default;

    /// Sets the title and gives the picture a new stream name, the decimal text
    /// of GetNearUniqueID(), so that a picture added to an existing file never
    /// overwrites one that is already there.
    void SetTitle(const char* title);

    /// The title of the painting.
    std::string GetTitle() const { return title; }
    /// The name of the picture's stream in the collection file.
    std::string GetFileName() const { return fileName; }

private:
    friend class boost::serialization::access;
    // Both directions of the description: title, then fileName.
    template <class Archive>
    void serialize(Archive& archive, unsigned int version);

    std::string title;
    std::string fileName;
};
