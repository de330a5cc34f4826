// A zlib stream that arrives in parts.
#pragma once

#include "Bytes.h"

#include <zlib.h>

namespace simulator {

class Inflater {
public:
    enum class Outcome { MoreWanted, StreamEnded, Broken };

    Inflater();
    ~Inflater();
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    /// Begins a new stream.
    void restart();
    /// Appends what the part inflates to. Once the stream has ended, the part may go on with one
    /// zero byte, which makes its length even; more than that is broken.
    Outcome feed(ByteView part, Bytes& plain);

private:
    z_stream m_stream{};
};

} // namespace simulator
