#include "driver/usage_text.h"

#include <array>
#include <string_view>

#include "support/console.h"

namespace quillet {
namespace {

// See docs/compatibility.md.
// clang-format off
constexpr std::array<std::string_view, 60> usage_text{{
    "Performs various operations on ORVANE .dat files and outputs a new .dat file",
    "",
    "  Flags:",
    "     \"-b\" batch mode, no Enter key required when finished",
    "     \"-conv\" convert between .dat and .xmdf files",
    "     \"-con\" concatenate multiple files into one",
    "     \"-dif\" takes the difference between two .dat files.",
    "          An optional third .dat file is used for the output filename.",
    "        \"Specifying -nowetdry\" for -dif option does not carry out wet/dry test using _h.dat file",
    "     \"-ddur<cutoff_value>\" determines the difference in inundation duration in hours up to the -t time",
    "          The -t<time> flag must be used to set the time when the duration difference is calculated",
    "          cutoff_value is used to remove points where the flood has not started to fall",
    "            and to handle points that are stagnant at the -t time.",
    "            The hydrograph must fall by the cutoff_value after the peak, and the level ",
    "            used to determine the difference is the level at the -t time",
    "            plus the cutoff_value.  Typically specify a value of, say 0.1m.",
    "          An optional third .dat file is used for the output filename.",
    "     \"-dur<cutoff_value>\" determines the duration in hours the cutoff value is exceeded",
    "     \"-k<time>\" keeps only data for time <time>",
    "     \"-out\" \"<file.dat>\" specifies the output .dat filename.",
    "          Must be a space between -out and filename.  Use quotes if spaces in filename.",
    "     \"-max\" determines the maximum value in all the .dat files",
    "     \"-r<time>\" removes data for time <time>",
    "     \"-t<time>\" applies only to time <time> for the -dif and -max options.",
    "          Also required for the -ddur option (see above). ",
    "     \"-times\" displays and exports the times in the .dat file",
    "     \"-trim<cutoff_value>\" trims any values to the cutoff value (useful for large velocities)",
    "     \"-va\" outputs the flow angle in degrees (N=0, E=90, W=-90, S=180/-180)",
    "  Range Flags:",
    "     Create a new results file with only range of times.",
    "     Can be used to crop large results file into smaller files.",
    "     \"-rangeA<first time>\" set the first time to keep",
    "     \"-rangeB<last time>\" set the last time to keep",
    "     No space between rangeA/rangeB and the time",
    "",
    "  XMDF Flags:",
    "     -type<output type> to convert a specific output type.",
    "     output types should as specified in the .ocf eg. h, V, q, or d",
    "      For example -typeH to convert water levels.",
    "",
    "     -s<id>\"<output id (integer)>\" to use the specified scalar dataset.",
    "     -s1 will convert the first scalar dataset in the .xmdf file.",
    "",
    "     -v<id>\"<output id (integer)>\" to use the specified vector dataset.",
    "     -v2 will convert the second vector dataset in the .xmdf file.",
    "",
    "     -path\"<path name>\" the datasets are specified via the dataset or folder name.",
    "     -path\"Max Value\" will use the dataset called Max Value.",
    "     -path\"MaxMax/Max Value\" will use the dataset Max Value in folder MaxMax.",
    "",
    "  File 1:  Primary .dat file.",
    "  File 2 onwards (-con, -dif, -ddur, -k, -max, -r flags):  Secondary .dat file(s).",
    "",
    "Example:  quillet.exe -k99999 run_h.dat",
    "            Will create a new.dat file with only the data for the 99999 time.",
    "Example:  quillet.exe -rangeA1 -rangeB27.5 run_h.dat",
    "            Will create a new.dat file with only the data between time 1 and time 27.5.",
    "Example:  quillet.exe -rangeA1 -rangeB27.5 -out run_h_extract.dat run_h.dat",
    "            As above but will output to .dat file called run_h_extract.dat.",
    "",
}};
// clang-format on

}  // namespace

void PRINT_USAGE() {
  for (const std::string_view line : usage_text) SAY(line);
}

}  // namespace quillet
