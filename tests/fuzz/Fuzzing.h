#pragma once

#include "platform/IMessageBox.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <gtest/gtest.h>

// What the fuzzers have in common. Each defines LLVMFuzzerTestOneInput; an EXPECT that fails ends
// it as a crash does, and libFuzzer keeps the input.

namespace fldc {

/// Counts the boxes; nobody answers a question.
class AnyMessages final : public IMessageBox {
public:
    int boxes = 0;

    void show(const QString& /*text*/, MessageKind /*kind*/) override { ++boxes; }
    [[nodiscard]] bool askYesNo(const QString& /*text*/) override { return false; }
};

} // namespace fldc
