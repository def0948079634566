#include "evidence/folders/similar_names.h"

namespace evidence {

// The system itself takes a name for the entry that it means.
similar_names::match similar_names::find(const QByteArray &, const QByteArray &)
{
    return {};
}

} // namespace evidence
