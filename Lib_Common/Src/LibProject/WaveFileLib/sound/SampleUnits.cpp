// SPDX-License-Identifier: Apache-2.0
#include "sound/SampleUnits.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace sampleunits {
namespace {

// From the order of bytes in sounds to that of the machine, and back.
template <typename Unit>
Unit InOrder(Unit unit) {
  if constexpr (std::endian::native == std::endian::little) {
    return unit;
  } else {
    Unit turned = 0;
    for (std::size_t i = 0; i < sizeof(Unit); ++i) {
      turned = static_cast<Unit>(turned << 8U | (unit >> (8 * i) & 0xFFU));
    }
    return turned;
  }
}

template <typename Unit>
Unit UnitAt(const unsigned char* pbyUnit) {
  Unit unit = 0;
  std::memcpy(&unit, pbyUnit, sizeof(Unit));
  return InOrder(unit);
}

template <typename Unit>
void SetUnit(unsigned char* pbyUnit, Unit unit) {
  unit = InOrder(unit);
  std::memcpy(pbyUnit, &unit, sizeof(Unit));
}

// Calls fnWork with a number of the type that is cbUnit bytes wide.
template <typename Work>
void WithUnit(std::size_t cbUnit, Work fnWork) {
  switch (cbUnit) {
    case 1:
      return fnWork(std::uint8_t{});
    case 2:
      return fnWork(std::uint16_t{});
    case 4:
      return fnWork(std::uint32_t{});
    default:
      return;
  }
}

template <std::size_t cb>
using Bytes = std::integral_constant<std::size_t, cb>;

// Calls fnWork with the width of a sample, as a constant where it can be.
template <typename Work>
void WithWidth(std::size_t cbSample, Work fnWork) {
  switch (cbSample) {
    case 1:
      return fnWork(Bytes<1>());
    case 2:
      return fnWork(Bytes<2>());
    case 3:
      return fnWork(Bytes<3>());
    case 4:
      return fnWork(Bytes<4>());
    default:
      return fnWork(cbSample);
  }
}

// cbStep is a constant where the units lie one after the other, because vectors are loaded whole.
template <typename Unit, typename Step>
void ReadUnits(const S_UnitFormat& format, const unsigned char* pbyUnits, Step cbStep,
               std::span<int> values) {
  const unsigned int dwSign = format.bSigned ? format.dwSignBit : 0U;
  const unsigned int dwOffset = format.bSigned ? 0U : format.dwSignBit;
  int* const __restrict pnValues = values.data();
  const std::size_t nValues = values.size();
  for (std::size_t i = 0; i < nValues; ++i) {
    const unsigned int dwUnit = UnitAt<Unit>(pbyUnits + i * cbStep);
    // Minus the sign bit is this bit and all above it.
    pnValues[i] = static_cast<int>((dwUnit | (0U - (dwUnit & dwSign))) - dwOffset);
  }
}

template <bool bClip>
class C_Encoder {
 public:
  C_Encoder(const S_UnitFormat& format, const S_Storing& storing)
      : m_nMinimum(storing.nMinimum),
        m_nMaximum(storing.nMaximum),
        m_dwOffset(format.bSigned ? 0U : format.dwSignBit),
        m_dwMask(format.bSigned ? storing.dwValueMask : 0xFFFFFFFFU),
        m_dwForNegative(format.bSigned && !storing.bExact ? 0xFFFFFFFFU : 0U) {}

  [[nodiscard]] unsigned int Unit(int nValue) const {
    if constexpr (bClip) {
      nValue = nValue < m_nMinimum ? m_nMinimum : nValue;
      nValue = nValue > m_nMaximum ? m_nMaximum : nValue;
    }
    const auto dwAllSigns = static_cast<unsigned int>(nValue >> 31);
    return ((static_cast<unsigned int>(nValue) + m_dwOffset) & m_dwMask) +
           (dwAllSigns & m_dwForNegative);
  }

 private:
  int m_nMinimum;
  int m_nMaximum;
  unsigned int m_dwOffset;
  unsigned int m_dwMask;
  unsigned int m_dwForNegative;  // is added: -1 where negative values are stored one step lower
};

// The encoder is a copy, which stays in registers: what is written might be its memory.
template <typename Unit, typename Encoder>
void WriteUnits(const Encoder encoder, std::span<const int> values,
                unsigned char* __restrict pbyUnits) {
  const int* const pnValues = values.data();
  const std::size_t nValues = values.size();
  for (std::size_t i = 0; i < nValues; ++i) {
    SetUnit(pbyUnits + i * sizeof(Unit), static_cast<Unit>(encoder.Unit(pnValues[i])));
  }
}

template <typename Unit, typename Encoder>
void WritePartsOfUnits(const Encoder encoder, Unit mask, std::span<const int> values,
                       unsigned char* __restrict pbyUnits) {
  const int* const pnValues = values.data();
  const std::size_t nValues = values.size();
  for (std::size_t i = 0; i < nValues; ++i) {
    unsigned char* const pbyUnit = pbyUnits + i * sizeof(Unit);
    const auto unit = static_cast<Unit>(encoder.Unit(pnValues[i]));
    SetUnit(pbyUnit, static_cast<Unit>((UnitAt<Unit>(pbyUnit) & ~mask) | (unit & mask)));
  }
}

template <typename Encoder>
void Encode(const Encoder& encoder, const S_UnitFormat& format, const S_Storing& storing,
            std::span<const int> values, unsigned char* pbyUnits) {
  WithUnit(format.cbUnit, [&]<typename Unit>(Unit) {
    const auto mask = static_cast<Unit>(storing.dwAccessMask);
    if (mask == static_cast<Unit>(~Unit{})) {
      WriteUnits<Unit>(encoder, values, pbyUnits);
    } else {
      WritePartsOfUnits<Unit>(encoder, mask, values, pbyUnits);
    }
  });
}

template <typename Width, typename LeftStep, typename RightStep>
void InterleaveSides(const unsigned char* pbyLeft, LeftStep cbLeftStep,
                     const unsigned char* pbyRight, RightStep cbRightStep, std::size_t nCount,
                     Width cbSample, unsigned char* __restrict pbyDst) {
  for (std::size_t i = 0; i < nCount; ++i) {
    std::memcpy(pbyDst + 2 * i * cbSample, pbyLeft + i * cbLeftStep, cbSample);
    std::memcpy(pbyDst + (2 * i + 1) * cbSample, pbyRight + i * cbRightStep, cbSample);
  }
}

}  // namespace

void Read(const S_UnitFormat& format, const S_Samples& samples, std::span<int> values) {
  WithUnit(format.cbUnit, [&]<typename Unit>(Unit) {
    if (samples.cbStep == sizeof(Unit)) {
      ReadUnits<Unit>(format, samples.pbyFirst, Bytes<sizeof(Unit)>(), values);
    } else {
      ReadUnits<Unit>(format, samples.pbyFirst, samples.cbStep, values);
    }
  });
}

void Write(const S_UnitFormat& format, const S_Storing& storing, std::span<const int> values,
           unsigned char* pbyUnits) {
  if (storing.bClip) {
    Encode(C_Encoder<true>(format, storing), format, storing, values, pbyUnits);
  } else {
    Encode(C_Encoder<false>(format, storing), format, storing, values, pbyUnits);
  }
}

void Copy(const S_Samples& samples, std::size_t nCount, std::size_t cbSample, unsigned char* pbyDst,
          std::size_t cbDstStep) {
  WithWidth(cbSample, [&](auto cbWidth) {
    const auto [pbyFirst, cbStep] = samples;
    for (std::size_t i = 0; i < nCount; ++i) {
      std::memcpy(pbyDst + i * cbDstStep, pbyFirst + i * cbStep, cbWidth);
    }
  });
}

void Interleave(const S_Samples& left, const S_Samples& right, std::size_t nCount,
                std::size_t cbSample, unsigned char* pbyDst) {
  WithWidth(cbSample, [&](auto cbWidth) {
    if (left.cbStep == cbSample && right.cbStep == cbSample) {
      InterleaveSides(left.pbyFirst, cbWidth, right.pbyFirst, cbWidth, nCount, cbWidth, pbyDst);
    } else {
      InterleaveSides(left.pbyFirst, left.cbStep, right.pbyFirst, right.cbStep, nCount, cbWidth,
                      pbyDst);
    }
  });
}

}  // namespace sampleunits
