#pragma once

// What the simulated SDK library exports beside the vendor's functions, for tests and for hosts in any language.

#ifdef __cplusplus
extern "C" {
#endif

/** Applies a script, a JSON text as docs/simulator.md describes it: what it names is set, its faults take the place of
 * all earlier ones, and all else stays as it is. Other instruments than before are new ones; a serial number keeps its
 *  handle. Files that the script names are found in the working folder.
 *
 *  Null puts everything back to how it was when the library was loaded, and reads the environment anew.
 *
 *  @return null, or what is wrong, a text that is valid until the next call of this function; a script that is wrong
 *          changes nothing
 */
const char* I1PRO3_SimulatorUse(const char* script);

/** Says that this library is a simulation, and of what; the text is valid until the script changes. The recorder has
 *  this function, too, and passes on what the recorded library says: null when that is not a simulation.
 */
const char* I1PRO3_SimulatorDescription(void);

#ifdef __cplusplus
}
#endif
