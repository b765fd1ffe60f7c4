#pragma once
// The shared state of the program: the image, its area, and the values that
// loads, saves, sums and the dump hand each other. One object lives as long
// as the program and is passed by reference to everything that needs it.
#include <cstdint>
#include <string>
#include <vector>

#include "image/Address.h"
#include "image/ByteBuffer.h"

namespace kestrum {

// What the main window shows and other windows write into: its fields as
// plain data. The Qt window copies them to its widgets.
struct SumToolFields {
  std::string txtbuffaddr = "00000000";
  std::string txtbufladdr = "0007FFFF";
  std::string txteditaddr;
  std::string Text1;               // the current file, without its path
  std::vector<std::string> List1;  // rows of the dump
  bool cmdeditplusEnabled = false;
  bool cmdeditminusEnabled = false;
  bool cmdloadEnabled = true;
  bool cmdsaveEnabled = true;
  bool cmdbufclearEnabled = true;
  bool cmdblstoreEnabled = true;
  bool cmdbufsumEnabled = true;

  bool operator==(const SumToolFields&) const = default;
};

struct Module1 {
  // Image bytes 0 .. BufSize-1 stand for BufFirst .. BufLast; element
  // BufSize lies above the area and belongs to no address.
  ByteBuffer Buffer;
  Address BufFirst = 0;
  Address BufLast = 0;
  Address BufSize = 0;
  Address LoadOffset = 0;
  std::string LoadFileName;
  std::int16_t FileError = 0;
  Address SumFirst = 0;
  Address SumLast = 0;
  Address SaveFirst = 0;
  Address SaveLast = 0;
  std::int16_t RecordLength = 0;
  Address DumpAddr = 0;

  SumToolFields frmsumtool;

  // The byte at an address of the area.
  std::uint8_t& At(Address address) { return Buffer[static_cast<std::size_t>(address - BufFirst)]; }
  std::uint8_t At(Address address) const { return Buffer[static_cast<std::size_t>(address - BufFirst)]; }
  bool InArea(Address address) const { return address >= BufFirst && address <= BufLast; }
};

enum class SizeResult { Ok, NegativeSize, TooLarge, OutOfMemory };

constexpr Address kMaxBufSize = 2147483647;

// Makes first..last the area with a zeroed image. On failure everything
// stays as it was.
SizeResult SizeBuffer(Module1& m, Address first, Address last);

// Empties the dump and disables its step buttons: what every operation that
// changes the image does to the main window.
void ResetDump(SumToolFields& w);

// Buffer Clear's work: no current file, no dump, every byte of the area FF.
void ClearBuffer(Module1& m);

// A new area, as start-up, the area dialog and the command line make it:
// the texts read as addresses (unpadded, as they stand), the image sized
// and cleared, and the main window showing firstText..lastText as the area
// and firstText as the dump's address. On failure everything stays as it was.
SizeResult ResetArea(Module1& m, const std::string& firstText, const std::string& lastText);

}  // namespace kestrum
