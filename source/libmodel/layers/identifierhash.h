#pragma once

#include "libmodel/layers/cellref.h"

#include <QHashFunctions>

#include <unordered_map>
#include <unordered_set>

namespace Model {

/// A hash of all bytes of an identifier, seeded by the process. Qt's own leaves some of them out, so that a file could
/// be made in which all cells fall into one bucket.
struct IdentifierHash
{
    size_t operator()(const QUuid &identifier) const
    {
        static_assert(sizeof(QUuid) == 16);
        return qHashBits(&identifier, sizeof(QUuid), QHashSeed::globalSeed());
    }
    size_t operator()(const CellRef &ref) const
    {
        static_assert(sizeof(CellRef) == 2 * sizeof(QUuid));
        return qHashBits(&ref, sizeof(CellRef), QHashSeed::globalSeed());
    }
};

using IdentifierSet = std::unordered_set<QUuid, IdentifierHash>;
using CellRefSet = std::unordered_set<CellRef, IdentifierHash>;
template<typename Value>
using CellRefMap = std::unordered_map<CellRef, Value, IdentifierHash>;

} // namespace Model
