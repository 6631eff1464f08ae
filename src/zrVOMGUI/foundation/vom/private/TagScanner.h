#pragma once

#include "zrVOMGUI/foundation/vom/private/Reports.h"

#include <cstddef>
#include <string_view>

namespace ZR::VOM::Xml {

/// Moves `place` over the first `size` bytes of `text`, which is UTF-8.
void advance(Place &place, std::string_view text, std::size_t size);

/// Runs through a document one start tag ahead of an XML reader.
///
/// It knows where a tag begins, which readers don't tell. And it gives up on what would take a
/// reader far more time or memory than it takes to write: a document type, with its entities, and a
/// tag with more attributes than any of ours, each of which a reader compares with all others.
class TagScanner {
public:
    /// `text` is UTF-8 and outlives the scanner. Stands before the first tag; gives up on a
    /// document in any other encoding that shows at its start.
    TagScanner(std::string_view text, Reports &reports);

    /// Goes on to the next start tag, if there is one, and returns where it begins.
    Place next();

private:
    void checkEncoding();
    bool skipMarkup();
    void scanAttributes();
    void skipPast(std::string_view end);
    bool startsWith(std::string_view start) const { return rest.substr(0, start.size()) == start; }
    void skip(std::size_t size);

    std::string_view rest;
    Reports &reports;
    Place place; // Of the start of `rest`.
};

} // namespace ZR::VOM::Xml
