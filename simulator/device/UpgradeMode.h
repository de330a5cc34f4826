// The radio's upgrade software: it carries out commands and keeps what lasts from one to the next,
// the authorised component, the selected memory device and where the next data go.
#pragma once

#include "Log.h"
#include "device/Answer.h"
#include "device/Faults.h"
#include "device/Inflater.h"
#include "device/Memory.h"

namespace simulator {

/// What a command leads to.
struct Answer {
    Pieces pieces;
    int newSpeed = 0;     // bit/s, already in force for the answer; 0 for no change
    bool restart = false; // in place of an answer
};

/// How one command is called, what data it takes and who carries it out.
struct Command;

class UpgradeMode {
public:
    UpgradeMode(const Profile& profile, const Faults& faults, Memory& memory, Log& log);

    static std::string_view commandName(std::uint8_t code);
    static Answer refusal(FaultWord word);

    /// `data`: the frame's data bytes, an even number of at most 510.
    Answer carryOut(std::uint8_t code, ByteView data);
    /// Forgets everything but the memory's contents, and locks all of the flash.
    void restart();

private:
    friend struct Command;
    enum class Writing { Nothing, Plain, Inflating };
    static const Command* find(std::uint8_t code);

    // The commands. Each fills in m_answer, or returns why it refuses.
    // Speeds are in units of 1200 bit/s, block numbers and characters are 16-bit words, a memory
    // device is a network number and a device number, one byte each.
    FaultWord setBaudRate(ByteView data);
    FaultWord reportConfiguration(ByteView data);
    FaultWord unlockFlash(ByteView data);
    FaultWord eraseFlash(ByteView data);
    FaultWord lockFlash(ByteView data);
    FaultWord setFlashAddress(ByteView data);
    FaultWord setFlashAddressInflate(ByteView data);
    FaultWord writeFlashData(ByteView data);
    FaultWord writeFlashDataInflate(ByteView data);
    FaultWord resetRadio(ByteView data);
    FaultWord confirmReady(ByteView data);
    FaultWord reportFlashStructure(ByteView data);
    FaultWord reportFlashRegions(ByteView data);
    FaultWord reportFlashId(ByteView data);
    FaultWord reportFlashOtp(ByteView data);
    FaultWord setMemoryTarget(ByteView data);
    FaultWord authoriseOnDevice(ByteView data);
    FaultWord authoriseComponent(ByteView data);

    /// Sets where the next data go. The first address since an authorisation or an erase is that of
    /// the component.
    FaultWord beginWriting(ByteView address, Writing how);
    /// Puts bytes into flash; `sent`: how many bytes of data they came as.
    FaultWord put(ByteView plain, std::size_t sent);
    /// Tells what was written. A compressed stream that has not ended by now makes the component
    /// damaged.
    void endWriting();
    /// The blocks are locked again: what was written into them is from now on reported.
    void installComponent(const Flash::BlockNumbers& blocks);
    /// Header byte, number of words, data, checksum.
    void sayRecord(std::uint8_t header, const Bytes& data);
    void sayDone() { m_answer.pieces.push_back({wordsToBytes({doneWord})}); }
    void authorise(ByteView code, std::string_view where);
    void forgetDownload();

    const Profile& m_profile;
    const Faults& m_faults;
    Memory& m_memory;
    Log& m_log;
    Inflater m_inflater;
    Answer m_answer;

    Flash* m_target; // where flash commands go
    std::string m_authorised;

    Writing m_writing = Writing::Nothing;
    std::size_t m_cursor = 0; // index into the target's bytes
    std::size_t m_begin = 0;  // of the run being written
    std::size_t m_sent = 0;   // bytes of data received for it

    // The component that is being put into flash.
    std::optional<std::uint32_t> m_firstAddress;
    std::size_t m_low = 0;
    std::size_t m_high = 0;
    bool m_damaged = false;
};

} // namespace simulator
