// A state with keys that real samplers write and no instrument imported here produces.
#include "platform/round_trip.h"
#include "sampler_host.h"
#include "support/state_paths.h"

#include <gtest/gtest.h>

namespace lumo::test {
namespace {

constexpr std::string_view full_state = R"(
<key>gain</key><real>-8</real><key>coarse tune</key><integer>-2</integer>
<key>fine tune</key><real>30.00000190734863</real><key>pan</key><real>-1</real>
<key>output</key><integer>1</integer><key>voice count</key><integer>32</integer>
<key>name</key><string>Full</string>
<key>data</key><data>AAAAAAAAAAAAAAAEAAADhAAAAAAAAAOFAAAAAAAAA4a3ugAAAAADhwAAAAA=</data>
<key>file-references</key><dict>
  <key>Bank:0</key><string>/banks/gm.sf2</string>
  <key>Sample:268435456</key><string>/sounds/a.wav</string>
  <key>by hand</key><string>/sounds/b.wav</string>
</dict>
<key>Instrument</key><dict>
  <key>Banks</key><dict><key>gm.sf2</key><array><integer>268435457</integer></array></dict>
  <key>name</key><string>Full.exs</string>
  <key>LFOs</key><array><dict><key>ID</key><integer>1</integer><key>rate</key><real>4.8</real></dict>
  </array>
  <key>Layers</key><array><dict>
    <key>ID</key><integer>0</integer><key>name</key><string>Pedal</string>
    <key>gain</key><real>-7</real><key>pan</key><real>30.00000190734863</real>
    <key>min vel</key><integer>1</integer><key>max vel</key><integer>85</integer>
    <key>min key</key><integer>24</integer><key>max key</key><integer>96</integer>
    <key>trigger mode</key><integer>11</integer><key>sel ctrlr</key><integer>64</integer>
    <key>sel ctrlr min val</key><integer>64</integer>
    <key>sel ctrlr max val</key><integer>127</integer>
    <key>Envelopes</key><array><dict><key>ID</key><integer>0</integer><key>Stages</key><array>
      <dict><key>stage</key><integer>3</integer><key>time</key><real>9.99899959564209</real></dict>
    </array></dict></array>
    <key>Connections</key><array><dict><key>ID</key><integer>0</integer><key>bipolar</key><true/>
      <key>source</key><integer>268435456</integer></dict></array>
    <key>Zones</key><array><dict>
      <key>ID</key><integer>17</integer><key>coarse tune</key><integer>-18</integer>
      <key>pan</key><real>60.00000381469727</real><key>sample start</key><integer>100</integer>
      <key>sample end</key><integer>900</integer><key>looping mode</key><integer>51</integer>
      <key>waveform</key><integer>268435456</integer><key>min vel</key><integer>1</integer>
    </dict></array>
  </dict></array>
</dict>)";

TEST(StateRoundTrips, KeepEveryKeyThatRealSamplersWrite) {
    const auto preset = class_info_with(full_state);
    platform::SamplerState state;
    ASSERT_EQ(platform::read_class_info(preset.get(), state), 0);
    expect_round_trip(state);
    StatePaths expected = state_paths(preset.get());
    expected["AU version"] = 1.0;
    expected["fine tune"] = 30.00000190734863F;
    EXPECT_EQ(state_paths(platform::class_info(state).get()), expected);
}

} // namespace
} // namespace lumo::test
