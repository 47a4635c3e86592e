/* SPDX-License-Identifier: BSD-3-Clause */
/* Public interface of kob_dp: reads and writes simulation result files in the KOB format. C99 and C++17. */
#ifndef KOB_DP_H
#define KOB_DP_H

#include <stdint.h>
#include <stdio.h>

/* Version of the library; its first three numbers are also the format version that a file header carries. */
#define KOB_VERSION_MAJOR 2
#define KOB_VERSION_MINOR 2
#define KOB_VERSION_PATCH 16

#if defined(__GNUC__)
#define KOB_API __attribute__((visibility("default")))
#else
#define KOB_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** @mainpage kob_dp
 *
 *  A KOB file is an HDF5 file that holds self-describing records, called blocks: a model and its results.
 *
 *  1. Open or create a file: KOB_OPEN(), KOB_CLOSE(). A new file is stamped with KOB_WRITE_FILEHEADER().
 *  2. Write blocks: KOB_WRITE_SYSTEM(), KOB_WRITE_ENTITYRESULTS() and the others. Each finds its own place.
 *  3. Find blocks again: kob_lookup() lists them all, KOB_SEARCHBLOCKS() selects some.
 *  4. Open a block with KOB_H5GOPEN() or KOB_OPENAUTOPATH() and read it: KOB_READ_SYSTEM() and the others.
 *
 *  How arguments are passed, what a status means, and where a block lives stand in
 *  @ref conventions, @ref status_codes, @ref storage_codes, @ref filters, @ref value_size, @ref sections,
 *  @ref paths, @ref block_keys and @ref state_index.
 */

/** @page conventions Conventions
 *
 *  Every argument is the address of a value or of the first element of an array, except where "by value" is said.
 *  Arrays are dense, and shapes are written slowest index first: `[nent, ncoo]` holds the ncoo components of entity 0,
 *  then those of entity 1. `[1]` is a single value.
 *
 *  Each argument is described by one line of the form
 *
 *      @param[direction] name type [shape], meaning
 *
 *  with one of these types:
 *
 *  | Type      | C type of an element | Meaning                                                                      |
 *  |-----------|----------------------|------------------------------------------------------------------------------|
 *  | `int32`   | `int32_t`            | integer                                                                      |
 *  | `int64`   | `int64_t`            | handle, or an extent or byte count                                           |
 *  | `double`  | `double`             | floating-point number                                                        |
 *  | `real`    | `void`               | 8- or 4-byte floating-point number, as memory_size or an added 1024 says     |
 *  | `char`    | `char`               | one character                                                                |
 *  | `text256` | `char[256]`          | one text of 256 characters, padded with blanks                               |
 *  | `text8`   | `char[8]`            | one text of 8 characters, padded with blanks                                 |
 *  | `unused`  | `void`               | not read; may be a null pointer                                              |
 *
 *  A type followed by `*` (`int32* [1]`) is the address of a pointer, followed by "by value" it is passed as such.
 *
 *  **Texts.** A text ends at its first NUL or after its declared length, whichever comes first, and loses its trailing
 *  characters that are not graphic (byte values other than 33 to 126: blanks, tabs, everything above 127). Texts that
 *  are stored as attributes or datasets are stored as the whole field that the caller passed, blanks included.
 *  Returned texts are padded with blanks and hold no NUL, unless a NUL was written.
 *
 *  **Handles.** A handle is an HDF5 identifier in an int64. A negative one is invalid. A caller may use HDF5 calls on
 *  it, as long as library and caller share one HDF5 library.
 *
 *  **Messages.** Errors and warnings are lines on standard error, listings and verbose reports lines on standard
 *  output. HDF5's own error stack is never printed while an entry point runs; the caller's setting of it is kept.
 *
 *  **Threads.** The library takes no locks: use one file from one thread at a time.
 */

/** @page status_codes Status
 *
 *  The last argument of almost every entry point is a status, an int32 that is set in every case:
 *
 *  | Status          | Meaning                                                                                        |
 *  |-----------------|------------------------------------------------------------------------------------------------|
 *  | 0               | success                                                                                        |
 *  | positive        | success with a message that the entry point explains: groups created, or the block key found   |
 *  | -1              | an HDF5 call failed, a block exists already, a wrong block key, an invalid handle              |
 *  | -3              | unknown pass or mode of a reader                                                               |
 *  | -123            | unknown frame switch (fswitch)                                                                 |
 *  | -998            | the running HDF5 library is older than 1.14.6                                                  |
 *  | -999            | the HDF5 library's version cannot be obtained; in a writer: unknown access mode                |
 *  | -9999           | unknown option                                                                                 |
 *  | -1001 to -6999  | reading or writing one attribute or dataset failed, see @ref storage_codes                     |
 *
 *  A writer stops at the first failure and leaves what is written so far in the file.
 */

/** @page storage_codes Storage codes
 *
 *  Reading or writing one attribute or dataset can give these statuses. Each prints one line "KOB INTERNAL ERROR (n)
 *  in ..." with the name of the item on standard error.
 *
 *  | Status                 | Writing an attribute                                                                    |
 *  |------------------------|-----------------------------------------------------------------------------------------|
 *  | -1001, -1002           | no such type in memory, in the file                                                     |
 *  | -1003                  | text or integer wider in memory than in the file                                        |
 *  | -1010, -1020, -1030    | an attribute of this name exists with another type class, rank, extent                  |
 *  | -1040, -1100, -1999    | dataspace, creation, writing failed                                                     |
 *
 *  | Status                 | Writing a dataset                                                                       |
 *  |------------------------|-----------------------------------------------------------------------------------------|
 *  | -3000                  | no extents, or an unlimited extent where the whole dataset is written                   |
 *  | -3001, -3002           | no such type in memory, in the file                                                     |
 *  | -3003                  | text or integer wider in memory than in the file                                        |
 *  | -3010, -3020           | a dataset of this name exists with another type class, rank                             |
 *  | -6030, -6031, -6032    | other extents than the existing dataset's, block outside, point outside                 |
 *  | -2040, -2050, -2060    | creation: dataspace (a negative or overflowing extent), byte order, property list       |
 *  | -2070, -2080           | creation: chunked layout, chunk extents                                                 |
 *  | -2090, -2100           | creation: contiguous layout, compact layout                                             |
 *  | -2110, -2120           | creation: fill value cannot be made, cannot be set                                      |
 *  | -2130, -2140, -2150    | creation: decimal scale factor above 256; float, integer scale-offset cannot be set     |
 *  | -2160, -2170, -2180    | creation: shuffle, deflate level not 0 to 9, deflate                                    |
 *  | -2190                  | creation of the dataset failed                                                          |
 *  | -3100, -3110, -3120    | extending, file dataspace, memory dataspace failed                                      |
 *  | -3999                  | writing failed (a full disk, for example, also when it shows only at the close)         |
 *
 *  | Status                 | Reading an attribute                                                                    |
 *  |------------------------|-----------------------------------------------------------------------------------------|
 *  | -4001, -4002, -4003    | no such type, attribute missing, another type class                                     |
 *  | -4010, -4011           | stored text, integer wider than the caller's                                            |
 *  | -4020, -4030, -4999    | another rank, another extent, reading failed                                            |
 *
 *  | Status                 | Reading a dataset                                                                       |
 *  |------------------------|-----------------------------------------------------------------------------------------|
 *  | -6001, -6002, -6003    | no such type, dataset missing, another type class                                       |
 *  | -6010, -6011           | stored text, integer wider than the caller's                                            |
 *  | -6020, -6030           | another rank, another extent                                                            |
 *  | -6031, -6032           | block outside, point outside                                                            |
 *  | -6040, -6050, -6060    | scale-offset of an unexpected kind on integers, floats, texts                           |
 *  | -6120, -6999           | selection, reading failed                                                               |
 *
 *  A dataset with a zero extent is neither written nor read, and that is a success that leaves the outputs alone.
 *  Extents come from the caller's counts; they are compared with what the file holds before anything is read, so give
 *  the counts that the file reported.
 */

/** @page filters Filter flags and parameters
 *
 *  A writer's filter_flags choose the compression of its datasets, by kind of data:
 *
 *  | Bit value | Meaning                                                                          |
 *  |-----------|----------------------------------------------------------------------------------|
 *  | 1, 2, 4   | deflate of integers, floating-point numbers, texts                               |
 *  | 8, 16, 32 | byte shuffle of integers, floating-point numbers, texts                          |
 *  | 64        | scale-offset of integers (lossless)                                              |
 *  | 128       | scale-offset of floating-point numbers, decimal scale (lossy)                    |
 *
 *  filter_params[0] is the number of decimal digits behind the point that bit 128 keeps (0 to 256), filter_params[1]
 *  the deflate level (0 to 9). Elements of a scale-offset dataset that are never written read as 10000.
 *
 *  **What scale-offset promises.** With bit 64 every integer comes back as it was given. With bit 128 and D digits no
 *  value that is read differs from the given one, rounded to the stored size, by more than half of 10^-D (10^-D for
 *  values that lie within 10^-D of 10000) plus one unit in the last place of the chunk's largest magnitude. A chunk
 *  where that cannot be had is stored without the scale-offset step, exactly: one that holds a NaN or an infinity,
 *  whose range needs all bits of the stored size, or whose digits reach beyond the stored precision. Its filter mask in
 *  the file says so, and every HDF5 library reads it. Where several writes share a chunk (a series under
 *  KOB_SET_CHUNK_SIZE(), a block or points of a dataset), what an earlier one left stays bit for bit as it reads, if
 *  need be by storing the chunk without the step from then on. The promise is for values written through this library;
 *  HDF5 itself, writing into the same dataset, makes no such promise.
 *
 *  Chunks at full precision, which HDF5 wrote for such ranges and which its version 1.14.6 refuses to read, are read.
 *
 *  A dataset of at most 7 elements is never filtered. Unfiltered datasets of at most 24000 bytes are kept in the object
 *  header. Writers clear bit 128 for index values, weights, unit tables and other auxiliary numbers: lossy compression
 *  reaches result values (and the component map of a variable) alone.
 *
 *  Readers report the flags and parameters that they find; the parameter of a filter that is not there is 0.
 */

/** @page value_size Value size
 *
 *  A result writer's value_size says how the result values are stored, and whether they are complex:
 *
 *  | value_size     | Stored                                       | Shape of the values  |
 *  |----------------|----------------------------------------------|----------------------|
 *  | 4              | real, 4-byte numbers                         | `[nent, ncoo]`       |
 *  | 8              | real, 8-byte numbers                         | `[nent, ncoo]`       |
 *  | 16             | complex, two 4-byte numbers                  | `[nent, ncoo, 2]`    |
 *  | 32             | complex, two 8-byte numbers                  | `[nent, ncoo, 2]`    |
 *  | anything else  | real, 8-byte numbers                         | `[nent, ncoo]`       |
 *
 *  The last index of complex values is 0 for the real and 1 for the imaginary part.
 *
 *  A model writer's float_size is the stored size of its floating-point data: 4 or 8; 0 or less means 8.
 *  In memory floating-point data are doubles, except where an argument memory_size chooses.
 */

/** @page sections Sections of a block
 *
 *  Where an argument holds section bits (named sections, or mode in some readers), they add up to what is visited:
 *
 *  | Bit value | Section                                                                                     |
 *  |-----------|---------------------------------------------------------------------------------------------|
 *  | 1         | attributes: names, counts, switches                                                         |
 *  | 2         | state index: indexident and indexval                                                        |
 *  | 4         | identifiers                                                                                 |
 *  | 8         | main data                                                                                   |
 *  | 16        | (writers) identifiers are shared: stored once in another group and linked into the block    |
 *
 *  Sections are visited in the order of their bits. A reader that is not asked for the attributes takes the counts and
 *  switches from the caller, so they are inputs then.
 */

/** @page paths Where a block lives
 *
 *  A block is a group named "kobblock". Its path below the group of KOB_OPEN() is put together from left to right:
 *
 *  1. "constant" if the number of states is 0, "multistate" if it is -1, else "singlestate";
 *  2. if the number of states is positive, the state groups: "/state%012d" of the state number, or, if the state number
 *     is negative, one such group for each state identifier, last identifier first;
 *  3. up to five names, chosen by a mask (1 the first, 2 the second, 4, 8, 16), each as "/" and the trimmed text; an
 *     empty one is left out together with its "/";
 *  4. the number, if it is not negative, directly behind;
 *  5. "_set" and the set number, if that is not negative;
 *  6. "/kobblock".
 *
 *  Constant data of the entity type NODE: `constant/NODE/kobblock`; state 12, DISPLACEMENT, set 1:
 *  `singlestate/state000000000012/DISPLACEMENT_set1/kobblock`.
 *
 *  The group "singlestate" reserves 16 KiB for the names of its states, so that adding states moves nothing. A file
 *  with a single state is larger by that.
 *
 *  Every block carries two attributes: "block", its key, and "blocktype", its type name padded with NULs to 256
 *  characters.
 */

/** @page block_keys Block keys
 *
 *  | Block                             | Key          | Type name              |
 *  |-----------------------------------|--------------|------------------------|
 *  | File header (listings only)       | 1            |                        |
 *  | System                            | 10           | "system"               |
 *  | Index                             | 20           | "indices"              |
 *  | Variable                          | 30           | "variable"             |
 *  | Variable group                    | 32           | "variablegroup"        |
 *  | Text                              | 40           | "text"                 |
 *  | Parts                             | 100          | "parts"                |
 *  | Attributes                        | 200          | "attributes"           |
 *  | Identifiers                       | 250          | "identifiers"          |
 *  | Connectivities                    | 300          | "connectivities"       |
 *  | Collector                         | 400          | "collector"            |
 *  | Properties                        | 500          | "properties"           |
 *  | Entity results                    | 1000, 1001   | "entityresults"        |
 *  | Multi-state entity results        | 1050, 1051   | "multientityresults"   |
 *  | Element results                   | 1100, 1101   | "elementresults"       |
 *  | Multi-state element results       | 1150, 1151   | "multielementresults"  |
 *  | Activation flags                  | 2100         | "activflags"           |
 *  | Multi-state activation flags      | 2150         | "multiactivflags"      |
 *  | Dense matrix                      | 10000, 10001 | "densematrix"          |
 *  | Triangular matrix                 | 10100, 10101 | "triangularmatrix"     |
 *  | Sparse matrix                     | 10200, 10201 | "sparsematrix"         |
 *
 *  Of two keys the first stands for real, the second for complex values.
 */

/** @page state_index State index
 *
 *  Data that belong to a state carry its index: nindex numbers (their kinds are declared once per file with
 *  KOB_WRITE_INDEX()), each an identifier (indexident, for example the number of the time step) and a value (indexval,
 *  for example the time). nindex 0 marks constant data. indexic is a code of the index kind that the library stores as
 *  it is. The path of the block takes the state number that the writer is given, or, if that is negative, the index
 *  identifiers, see @ref paths.
 */

/** @defgroup text Texts, settings and module information
 *  @{ */

/** Measures a text without its trailing blanks, see @ref conventions.
 *  @param[in] text   char [length], the text
 *  @param[in] length int32 by value, its declared length; below 1: the text is empty
 *  @return the trimmed length, 0 to length; no byte behind the declared length is read */
KOB_API int32_t KOB_strlen(const char* text, int32_t length);

/** Prints a text without its trailing blanks and without a newline.
 *  @param[in] text   char [length], the text
 *  @param[in] length int64 by value, its declared length, of which the low 32 bits count
 *  @param[in] stream FILE by value, the stream to print to
 *  @return the number of characters written */
KOB_API int32_t KOB_putc(const char* text, int64_t length, FILE* stream);

/** Compares two texts without their trailing blanks; upper and lower case differ.
 *  @param[in] text1  char [length], the first text
 *  @param[in] text2  char [length], the second text
 *  @param[in] length int32 by value, the declared length of both
 *  @return 0 if equal; else the sign tells the order of the first bytes that differ; if one text begins with the other,
 *          the difference of their trimmed lengths
 *  @code{.c}
 *  KOB_strncmp("abc", "abc   ", 3);   // 0
 *  KOB_strncmp("ab ", "abc", 3);      // -1
 *  @endcode */
KOB_API int32_t KOB_strncmp(const char* text1, const char* text2, int32_t length);

/** Sets the chunk size of growable datasets, for the whole process.
 *  @param[in] size int32 [1], chunk extent along a growable dimension (states per chunk); below 2 counts as 1.
 *                  Any value is stored */
KOB_API void KOB_SET_CHUNK_SIZE(const int32_t* size);

/** Returns the chunk size of growable datasets; it is 1 until it is set.
 *  @param[out] size int32 [1], the value last set */
KOB_API void KOB_GET_CHUNK_SIZE(int32_t* size);

/** Returns the revision of the library's source, a constant text. */
KOB_API const char* KOB_get_revision(void);

/** Returns one line that describes the library, a constant text. */
KOB_API const char* KOB_get_module_description(void);

/** Returns one line with version, compilers and rights, a constant text. */
KOB_API const char* KOB_get_build_info(void);

/** Returns one of the texts about the module.
 *  @param[in] which int32 by value, 0: the description; 1: " kob version 2.2.16", with its leading blank;
 *                   any other: the build line
 *  @return a constant text */
KOB_API const char* KOB_get_module_info(int32_t which);

/** @} */

/** @defgroup sort Sorting and searching
 *
 *  Sort and search an array of positions instead of the data, which stays where it is. lo and hi are the first and the
 *  last place in that array to be sorted or searched, both included; unlike elsewhere they are passed by value.
 *  @code{.c}
 *  int32_t values[] = {30, 10, 20}, index[] = {0, 1, 2}, place;
 *  kob_iquicksort(values, index, 0, 2);              // index 1, 2, 0
 *  kob_ibsearch(20, values, index, 0, 2, &place);    // place 1: values[index[1]] is 20
 *  @endcode
 *  @{ */

/** Sorts positions so that the integers at them ascend; equal ones may change places.
 *  @param[in]     values int32 [any], the integers
 *  @param[in,out] index  int32 [hi + 1], positions in values; those at places lo to hi are rearranged
 *  @param[in]     lo     int32 by value, first place
 *  @param[in]     hi     int32 by value, last place; below lo: nothing is done */
KOB_API void kob_iquicksort(const int32_t* values, int32_t* index, int32_t lo, int32_t hi);

/** The same as kob_iquicksort(), under another name.
 *  @param[in]     values int32 [any], see kob_iquicksort()
 *  @param[in,out] index  int32 [hi + 1], see kob_iquicksort()
 *  @param[in]     lo     int32 by value, see kob_iquicksort()
 *  @param[in]     hi     int32 by value, see kob_iquicksort() */
KOB_API void kob_jquicksort(const int32_t* values, int32_t* index, int32_t lo, int32_t hi);

/** Finds an integer among sorted ones by halving.
 *  @param[in]  key      int32 by value, the integer to find
 *  @param[in]  values   int32 [any], the integers
 *  @param[in]  index    int32 [hi + 1], positions in values, sorted; null: values itself is sorted
 *  @param[in]  lo       int32 by value, first place
 *  @param[in]  hi       int32 by value, last place
 *  @param[out] position int32 [1], the place in index (not the position that it holds), any of equal ones; -1: not
 *                       there, or lo is above hi */
KOB_API void kob_ibsearch(int32_t key, const int32_t* values, const int32_t* index, int32_t lo, int32_t hi,
                          int32_t* position);

/** The same as kob_ibsearch(), under another name.
 *  @param[in]  key      int32 by value, see kob_ibsearch()
 *  @param[in]  values   int32 [any], see kob_ibsearch()
 *  @param[in]  index    int32 [hi + 1], see kob_ibsearch()
 *  @param[in]  lo       int32 by value, see kob_ibsearch()
 *  @param[in]  hi       int32 by value, see kob_ibsearch()
 *  @param[out] position int32 [1], see kob_ibsearch() */
KOB_API void kob_jbsearch(int32_t key, const int32_t* values, const int32_t* index, int32_t lo, int32_t hi,
                          int32_t* position);

/** Sorts positions so that the texts of equal width at them ascend, compared as by KOB_strncmp().
 *  @param[in]     records char [any, width], the texts one behind the other
 *  @param[in,out] index   int32 [hi + 1], numbers of texts; those at places lo to hi are rearranged
 *  @param[in]     lo      int32 by value, first place
 *  @param[in]     hi      int32 by value, last place; below lo: nothing is done
 *  @param[in]     width   int32 by value, characters of each text */
KOB_API void kob_cquicksort(const char* records, int32_t* index, int32_t lo, int32_t hi, int32_t width);

/** Finds a text among sorted ones of equal width by halving, compared as by KOB_strncmp().
 *  @param[in]  key      char [width], the text to find
 *  @param[in]  records  char [any, width], the texts one behind the other
 *  @param[in]  index    int32 [hi + 1], numbers of texts, sorted; null: the records themselves are sorted
 *  @param[in]  lo       int32 by value, first place
 *  @param[in]  hi       int32 by value, last place
 *  @param[in]  width    int32 by value, characters of each text
 *  @param[out] position int32 [1], the place in index (not the number that it holds), any of equal ones; -1: not
 *                       there, or lo is above hi */
KOB_API void kob_cbsearch(const char* key, const char* records, const int32_t* index, int32_t lo, int32_t hi,
                          int32_t width, int32_t* position);

/** Sorts positions so that the texts that pointers lead to ascend, compared byte by byte.
 *  @param[in]     texts char* [any], pointers to texts that end with a NUL
 *  @param[in,out] index int32 [hi + 1], positions in texts; those at places lo to hi are rearranged
 *  @param[in]     lo    int32 by value, first place
 *  @param[in]     hi    int32 by value, last place; below lo: nothing is done */
KOB_API void kob_cpquicksort(const char* const* texts, int32_t* index, int32_t lo, int32_t hi);

/** Finds a text among sorted ones in one buffer by halving, compared byte by byte.
 *
 *  Unlike kob_cpquicksort() it takes one buffer and offsets, not pointers.
 *  @param[in]  key      char [any], the text to find, ends with a NUL
 *  @param[in]  base     char [any], buffer of texts that end with a NUL
 *  @param[in]  offsets  int32 [hi + 1], where each text starts, in the order of the texts; null: the text of place i
 *                       starts at byte i
 *  @param[in]  lo       int32 by value, first place
 *  @param[in]  hi       int32 by value, last place
 *  @param[out] position int32 [1], the place in offsets, any of equal ones; -1: not there, or lo is above hi */
KOB_API void kob_cpbsearch(const char* key, const char* base, const int32_t* offsets, int32_t lo, int32_t hi,
                           int32_t* position);

/** @} */

/** @defgroup files Files
 *
 *  @code{.c}
 *  int64_t group;
 *  int32_t create = 0, no_domain = 0, name_len = 7, group_len = 3, status;
 *  KOB_OPEN("run.kob", &name_len, "run", &group_len, "", &no_domain, &group, &no_domain, &create, &status);
 *  KOB_WRITE_FILEHEADER(&group, NULL, NULL, &status);
 *  KOB_CLOSE(&group, &status);
 *  @endcode
 *  @{ */

/** Opens or creates a file and returns the group that holds its blocks.
 *
 *  The low four bits of option are the mode, and 1024 added to it makes the call report on standard output:
 *
 *  | Mode | Action                                                             | Group returned                      |
 *  |------|--------------------------------------------------------------------|-------------------------------------|
 *  | 0    | create (an existing file is emptied): group, domain group, "post"  | the group that "post" points to     |
 *  | 1    | open to read and write                                             | the group that "post" points to     |
 *  | 2    | open to read                                                       | the group that "post" points to     |
 *  | 8    | create an empty file (an existing file is emptied)                 | the root group                      |
 *  | 9    | open to read and write                                             | the root group                      |
 *  | 10   | open to read                                                       | the root group                      |
 *  | 13   | create an empty file if there is none, else open to read and write | the root group                      |
 *
 *  The modes that open (13 too) accept a path that goes on inside the file: "run.kob/results/domain_3" opens the group
 *  "/results/domain_3" of "run.kob", where "run.kob/results/domain_3" is itself no HDF5 file. The longest leading part
 *  of the path that is an HDF5 file is taken. A file that HDF5 recognises but cannot open counts as not found.
 *
 *  Creating refuses a file that another process holds open and locked; its bytes stay as they are. File systems
 *  without locks, or locking switched off by HDF5's environment variable HDF5_USE_FILE_LOCKING, don't refuse.
 *
 *  Names are taken with exactly the given lengths: trailing blanks belong to a name.
 *
 *  @param[in]  file_name       char [file_name_len], name of the file, UTF-8
 *  @param[in]  file_name_len   int32 [1], length of file_name
 *  @param[in]  group_name      char [group_name_len], group to create in the root; mode 0 only
 *  @param[in]  group_name_len  int32 [1], length of group_name; mode 0 only
 *  @param[in]  domain_name     char [domain_name_len], group to create inside that group; mode 0 with domain_flag only
 *  @param[in]  domain_name_len int32 [1], length of domain_name; mode 0 with domain_flag only
 *  @param[out] handle          int64 [1], the group; 0 on every failure
 *  @param[in]  domain_flag     int32 [1], not 0: create a domain group, to which "post" then points; mode 0 only
 *  @param[in]  option          int32 [1], mode, plus 1024 for a verbose report
 *  @param[out] status          int32 [1], 0 opened; -9999 unknown mode; -998 HDF5 older than 1.14.6; -999 HDF5 version
 *                              unknown; otherwise minus the number of steps that failed (-1: name empty, file not
 *                              found, group not found; -2 and less: the file could not be created) */
KOB_API void KOB_OPEN(const char* file_name, const int32_t* file_name_len, const char* group_name,
                      const int32_t* group_name_len, const char* domain_name, const int32_t* domain_name_len,
                      int64_t* handle, const int32_t* domain_flag, const int32_t* option, int32_t* status);

/** The same as KOB_OPEN(), under the name of the older layout.
 *  @param[in]  file_name       char [file_name_len], see KOB_OPEN()
 *  @param[in]  file_name_len   int32 [1], see KOB_OPEN()
 *  @param[in]  group_name      char [group_name_len], see KOB_OPEN()
 *  @param[in]  group_name_len  int32 [1], see KOB_OPEN()
 *  @param[in]  domain_name     char [domain_name_len], see KOB_OPEN()
 *  @param[in]  domain_name_len int32 [1], see KOB_OPEN()
 *  @param[out] handle          int64 [1], see KOB_OPEN()
 *  @param[in]  domain_flag     int32 [1], see KOB_OPEN()
 *  @param[in]  option          int32 [1], see KOB_OPEN()
 *  @param[out] status          int32 [1], see KOB_OPEN() */
KOB_API void KOB1_OPEN(const char* file_name, const int32_t* file_name_len, const char* group_name,
                       const int32_t* group_name_len, const char* domain_name, const int32_t* domain_name_len,
                       int64_t* handle, const int32_t* domain_flag, const int32_t* option, int32_t* status);

/** Flushes a file, closes everything that is open in it, and closes the file itself.
 *
 *  Every handle of the file becomes invalid, also those of a second KOB_OPEN() of the same file.
 *  @param[in]  handle int64 [1], any object of the file
 *  @param[out] status int32 [1], 0 closed; -1 something could not be closed, or the handle is none */
KOB_API void KOB_CLOSE(const int64_t* handle, int32_t* status);

/** Flushes a file to disk.
 *  @param[in]  handle int64 [1], any object of the file
 *  @param[in]  scope  int32 [1], 0: the file and all files mounted on it; 1: this file; any other: nothing is done
 *  @param[out] status int32 [1], always 0 */
KOB_API void KOB_FLUSH(const int64_t* handle, const int32_t* scope, int32_t* status);

/** The same as KOB_FLUSH(), under the name of the older layout.
 *  @param[in]  handle int64 [1], see KOB_FLUSH()
 *  @param[in]  scope  int32 [1], see KOB_FLUSH()
 *  @param[out] status int32 [1], see KOB_FLUSH() */
KOB_API void KOB1_FLUSH(const int64_t* handle, const int32_t* scope, int32_t* status);

/** Returns the versions of this library and of the running HDF5 library as a text.
 *  @param[out] text     text256 [1], the text, padded with blanks, without NUL
 *  @param[in]  selector int32 [1], 1: the build identifier; 2: "HDF5-1.14.6"; 4: "KOB-2.2.16"; 6: "HDF5-1.14.6
 *                       KOB-2.2.16"; any other: "kob__dp HDF5-1.14.6 KOB-2.2.16" (with the running HDF5 version)
 *  @param[in]  verbose  int32 [1], positive: also print the versions on standard output
 *  @param[out] status   int32 [1], 0; -998 HDF5 older than 1.14.6; -999 its version is unknown. text is set with 0 */
KOB_API void KOB_GET_VERSION(char* text, const int32_t* selector, const int32_t* verbose, int32_t* status);

/** Opens a group by its path, and can create what is missing of it.
 *
 *  An empty part of the path (a leading "/", a doubled "/") is no level: it is not checked, created or counted. The
 *  name is not trimmed.
 *  @param[in]  parent int64 [1], group from which the path starts
 *  @param[in]  name   char [length], path of the group
 *  @param[in]  length int32 [1], length of name; -1: name ends with a NUL
 *  @param[in]  ioflag int32 [1], 0: create every missing level; 1: open only; 2: open only, and check every level
 *  @param[out] handle int64 [1], the group; -1 if the status is negative. Give it back with KOB_H5GCLOSE()
 *  @param[out] status int32 [1], 0 opened, all levels were there; positive: number of groups created;
 *                     -1 missing (ioflag 1 and 2); -8 a level cannot be created (the message names it);
 *                     -10 (ioflag 0), -20 (ioflag 1 and 2) the link is there but cannot be opened; -30 unknown ioflag;
 *                     -40 invalid length; -50 empty name with length -1 */
KOB_API void KOB_H5GOPEN(const int64_t* parent, const char* name, const int32_t* length, const int32_t* ioflag,
                         int64_t* handle, int32_t* status);

/** The same as KOB_H5GOPEN(), under the name of the older layout.
 *  @param[in]  parent int64 [1], see KOB_H5GOPEN()
 *  @param[in]  name   char [length], see KOB_H5GOPEN()
 *  @param[in]  length int32 [1], see KOB_H5GOPEN()
 *  @param[in]  ioflag int32 [1], see KOB_H5GOPEN()
 *  @param[out] handle int64 [1], see KOB_H5GOPEN()
 *  @param[out] status int32 [1], see KOB_H5GOPEN() */
KOB_API void KOB1_H5GOPEN(const int64_t* parent, const char* name, const int32_t* length, const int32_t* ioflag,
                          int64_t* handle, int32_t* status);

/** Closes one group.
 *  @param[in]  handle int64 [1], the group
 *  @param[out] status int32 [1], 0 closed; -1 the handle is no open group */
KOB_API void KOB_H5GCLOSE(const int64_t* handle, int32_t* status);

/** The same as KOB_H5GCLOSE(), under the name of the older layout.
 *  @param[in]  handle int64 [1], see KOB_H5GCLOSE()
 *  @param[out] status int32 [1], see KOB_H5GCLOSE() */
KOB_API void KOB1_H5GCLOSE(const int64_t* handle, int32_t* status);

/** @} */

/** @defgroup header File header
 *
 *  A file is stamped once after its creation, and the stamp is checked after opening:
 *  @code{.c}
 *  int32_t open_only = 1, nul_terminated = -1, filter_flags, filter_params[2], status;
 *  int64_t header;
 *  char version[32];
 *  KOB_H5GOPEN(&group, "kobheader", &nul_terminated, &open_only, &header, &status);
 *  KOB_READ_FILEHEADER(&header, version, &filter_flags, filter_params, &status);   // status 0, version "2 2 16"
 *  KOB_H5GCLOSE(&header, &status);
 *  @endcode
 *  @{ */

/** Stamps a file with the signature and the format version 2 2 16, in a new group "kobheader".
 *  @param[in]  group   int64 [1], group from KOB_OPEN()
 *  @param[in]  unused2 unused [1], not read
 *  @param[in]  unused3 unused [1], not read
 *  @param[out] status  int32 [1], 0 written; -1 the group "kobheader" exists already or cannot be created; else see
 *                      @ref storage_codes */
KOB_API void KOB_WRITE_FILEHEADER(const int64_t* group, const void* unused2, const void* unused3, int32_t* status);

/** Checks the stamp of a file against the signature and the format version 2 2 16.
 *
 *  Unlike the writer it is given the group "kobheader" itself. A wrong signature prints one warning line per byte.
 *  @param[in]  header        int64 [1], the group "kobheader", from KOB_H5GOPEN()
 *  @param[out] version       char [32], the version text, padded with blanks
 *  @param[out] filter_flags  int32 [1], filters of the header, see @ref filters; 0 for headers of this library
 *  @param[out] filter_params int32 [2], their parameters
 *  @param[out] status        int32 [1], 0 good; 1 to 8 so many bytes of the signature are wrong; 100 another version;
 *                            101 to 108 both; negative: the header cannot be read and no output is set, see
 *                            @ref storage_codes (-6003 when the handle is that of the parent group) */
KOB_API void KOB_READ_FILEHEADER(const int64_t* header, char* version, int32_t* filter_flags, int32_t* filter_params,
                                 int32_t* status);

/** Stamps a file of the older layout: KOB_WRITE_FILEHEADER() with the format version 1 2 0.
 *  @param[in]  group   int64 [1], group from KOB1_OPEN()
 *  @param[in]  unused2 unused [1], not read
 *  @param[in]  unused3 unused [1], not read
 *  @param[out] status  int32 [1], see KOB_WRITE_FILEHEADER() */
KOB_API void KOB1_WRITE_FILEHEADER(const int64_t* group, const void* unused2, const void* unused3, int32_t* status);

/** Checks the stamp of a file of the older layout: KOB_READ_FILEHEADER() with the format version 1 2 0.
 *  @param[in]  header        int64 [1], the group "kobheader", from KOB1_H5GOPEN()
 *  @param[out] version       char [32], the version text, padded with blanks
 *  @param[out] filter_flags  int32 [1], filters of the header, see @ref filters
 *  @param[out] filter_params int32 [2], their parameters
 *  @param[out] status        int32 [1], see KOB_READ_FILEHEADER() */
KOB_API void KOB1_READ_FILEHEADER(const int64_t* header, char* version, int32_t* filter_flags, int32_t* filter_params,
                                  int32_t* status);

/** @} */

/** @defgroup blocks Placing, listing and finding blocks
 *
 *  Lists all blocks of a file:
 *  @code{.c}
 *  int32_t store = 1, quiet = 0, capacity = 0, count, status;
 *  int64_t path_size = 0, path_length;
 *  int32_t* keys = NULL;
 *  int64_t* offsets = NULL;
 *  char* paths = NULL;
 *  kob_lookup(&group, &store, &quiet, &capacity, &path_size, &count, &path_length, &keys, &offsets, &paths, &status);
 *  for (int32_t i = 0; i < count; ++i) printf("%d %s\n", keys[i], paths + offsets[i]);
 *  free(keys);
 *  free(offsets);
 *  free(paths);
 *  @endcode
 *  @{ */

/** Opens the group of a block by its characteristics, and can create it; @ref paths says how the path is made.
 *
 *  A name is read up to its first NUL, but not beyond 256 characters. It may hold "/" and then adds several levels.
 *  @param[in]  parent  int64 [1], group from KOB_OPEN()
 *  @param[in]  mask    int32 [1], sum of 1, 2, 4, 8, 16: which of the five names go into the path
 *  @param[in]  unused3 unused [1], not read
 *  @param[in]  ioflag  int32 [1], 0: create what is missing; 1: open only; 2: open only, and check every level
 *  @param[in]  nstate  int32 [1], number of states n: 0 constant, -1 multi-state, else single-state
 *  @param[in]  states  int32 [nstate], state numbers, used if nstate is positive and state negative
 *  @param[in]  state   int32 [1], state number, used if nstate is positive; negative: take states
 *  @param[in]  name1   text256 [1], first name; read only if the mask has its bit, like the others
 *  @param[in]  name2   text256 [1], second name
 *  @param[in]  name3   text256 [1], third name
 *  @param[in]  name4   text256 [1], fourth name
 *  @param[in]  name5   text256 [1], fifth name
 *  @param[in]  number  int32 [1], number behind the names; negative: none
 *  @param[in]  set     int32 [1], set number; negative: none
 *  @param[out] block   int64 [1], the group of the block; -1 if the status is negative
 *  @param[out] status  int32 [1], as KOB_H5GOPEN(): 0 the block was there; positive: it is new, number of groups
 *                      created; -1 missing (ioflag 1 and 2); -8 a level cannot be created; -10, -20 cannot be opened;
 *                      -30 unknown ioflag */
KOB_API void KOB_OPENAUTOPATH(const int64_t* parent, const int32_t* mask, const void* unused3, const int32_t* ioflag,
                              const int32_t* nstate, const int32_t* states, const int32_t* state, const char* name1,
                              const char* name2, const char* name3, const char* name4, const char* name5,
                              const int32_t* number, const int32_t* set, int64_t* block, int32_t* status);

/** Lists every block below a group, in the order of names: its key and its path.
 *
 *  Entry i has the key keys[i] and the path that starts at paths + offsets[i] and ends with a NUL; the path is relative
 *  to the group and can be given to KOB_H5GOPEN(). The file header is listed with key 1. A block whose key cannot be
 *  read is left out. offsets[0] is 0, offsets[count] is path_length.
 *
 *  Soft and external links to groups are followed; one that leads nowhere is skipped. A group that is already open on
 *  the current path (a cycle) is not entered again. A group that has two names side by side is listed under both (seen
 *  from the root group, the blocks below "post" and below the group that it points to). The walk stops with a negative
 *  status beyond 4,096 levels or 1,000,000,000 links, which no real file has.
 *
 *  The arrays belong to the caller, who frees them with free(). Arrays that are handed in must come from malloc(); they
 *  are enlarged with realloc() where they are too small, so pass them back in to list again.
 *  @param[in]     group       int64 [1], group from which to start
 *  @param[in]     store       int32 [1], 1: fill the arrays; below 1: count only, and capacity, path_size and the three
 *                             pointers are set to 0 and null, without freeing what was handed in
 *  @param[in]     verbose     int32 [1], not 0: print the listing on standard output, if the arrays are filled
 *  @param[in,out] capacity    int32 [1], entries that the arrays can hold; below 1: allocate keys and offsets (10,000)
 *  @param[in,out] path_size   int64 [1], bytes of paths; below 1: allocate paths (2,560,000)
 *  @param[out]    count       int32 [1], number of blocks found
 *  @param[out]    path_length int64 [1], bytes that all paths take, their NULs included
 *  @param[in,out] keys        int32* [1], array [capacity] of block keys, see @ref block_keys
 *  @param[in,out] offsets     int64* [1], array [capacity + 1] of positions in paths
 *  @param[in,out] paths       char* [1], array [path_size] of characters, the paths one behind the other
 *  @param[out]    status      int32 [1], 0 complete; -1 an array is missing (null, or not enough memory); 1 not enough
 *                             memory during the walk, the arrays hold what was found until then; otherwise negative:
 *                             HDF5 failed, or the limits are exceeded */
KOB_API void kob_lookup(const int64_t* group, const int32_t* store, const int32_t* verbose, int32_t* capacity,
                        int64_t* path_size, int32_t* count, int64_t* path_length, int32_t** keys, int64_t** offsets,
                        char** paths, int32_t* status);

/** Finds the blocks below a group that fulfil all the criteria which are set.
 *
 *  Call it twice: with option 0 to learn count and path_length, then with arrays of that size. Links are followed as by
 *  kob_lookup(). A text criterion is unset if it is "undefined"; trailing blanks don't count. A block that lacks what a
 *  set criterion asks for does not match. Texts are compared with these attributes:
 *
 *  | Criterion | Keys                                             | Attribute                                         |
 *  |-----------|--------------------------------------------------|---------------------------------------------------|
 *  | etyp      | 100, 200, 250, 300, 500, 1000, 1001, 1050, 1051, 2100, 2150, matrices | "etyp"                       |
 *  | etyp      | 40; 400; 1100, 1101, 1150, 1151                  | "etyptext"; "etypcoll"; "etypelem"                |
 *  | etypvar   | 32, 1000, 1001, 1050, 1051, 1100, 1101, 1150, 1151, matrices | "etypvar"                             |
 *  | etypzone, zoneid | 500, 1000, 1001, 1050, 1051, 1100, 1101, 1150, 1151 | "etypzone", "zoneid"                    |
 *  | etypframe | 1000, 1001, 1050, 1051, 1100, 1101, 1150, 1151   | "etypframe"                                       |
 *  | series    | 1050, 1051, 1150, 1151, 2150                     | "series"                                          |
 *  | name2     | 30; 300; 500                                     | "varkey"; "etypelem"; "etypprop"                  |
 *  | matrixtype | matrices                                        | "matrixtype"                                      |
 *
 *  Blocks of other keys pass that criterion. The state index is tested for the keys 40, 100, 200, 250, 300, 400, 500,
 *  1000, 1001, 1100, 1101, 2100 and the matrices; the others pass with nindex 0 or less and are rejected with a
 *  positive nindex. With entid set only blocks with an identifier list can match (keys 100, 200, 250, 300, 400, 500,
 *  1000, 1001, 1050, 1051, 1100, 1101, 1150, 1151, 2100, 2150).
 *
 *  @param[in]  group           int64 [1], group from KOB_OPEN()
 *  @param[in]  option          int32 [1], below 1: count only, no array is written; 1: fill the arrays; bit value 2:
 *                              fill the arrays and typenames
 *  @param[in]  verbose         int32 [1], not 0: print the listing on standard output, if the arrays are filled
 *  @param[in]  key             int32 [1], block key; below 1: any
 *  @param[in]  etyp            text256 [1], entity type name
 *  @param[in]  etypvar         text256 [1], variable (group) name
 *  @param[in]  etypzone        text256 [1], zone name
 *  @param[in]  zoneid          int32 [1], zone number; negative: any
 *  @param[in]  etypframe       text256 [1], frame name
 *  @param[in]  series          text256 [1], series name
 *  @param[in]  matrixtype      int32 [1], matrix type; negative: any
 *  @param[in]  entid           int32 [1], identifier that the block must contain; negative: any
 *  @param[in]  name2           text256 [1], variable key, element type or property type
 *  @param[in]  unused14        unused [1], not read
 *  @param[in]  nindex          int32 [1], number of index ranges; 0: constant blocks; negative: any state
 *  @param[in]  indexident_low  int32 [nindex], smallest index identifiers
 *  @param[in]  indexval_low    double [nindex], smallest index values
 *  @param[in]  indexident_high int32 [nindex], largest index identifiers
 *  @param[in]  indexval_high   double [nindex], largest index values
 *  @param[in]  capacity        int32 [1], matches that the arrays can hold
 *  @param[in]  path_size       int64 [1], bytes of paths
 *  @param[out] count           int32 [1], number of matches
 *  @param[out] path_length     int64 [1], bytes that their paths take, NULs included
 *  @param[out] keys            int32 [capacity], block keys
 *  @param[out] offsets         int64 [capacity + 1], path i starts at paths + offsets[i], offsets[0] is 0
 *  @param[out] paths           char [path_size], the paths one behind the other, each ends with a NUL
 *  @param[out] typenames       text256 [capacity], block type names as stored ("n/a" if unreadable); bit value 2 only
 *  @param[out] status          int32 [1], 0 complete; 1 the arrays are full, count and path_length tell what they hold;
 *                              negative: HDF5 failed, or the limits of kob_lookup() are exceeded
 *  @code{.c}
 *  // all entity results of NODE at times 0.5 to 1.5, in the index whose first value is the time
 *  char any[256] = "undefined", node[256] = "NODE";
 *  int32_t count_only = 0, quiet = 0, any_number = -1, one = 1, results = 1000, first = 0, last = INT32_MAX, none = 0;
 *  int64_t no_bytes = 0, path_length;
 *  double from = 0.5, to = 1.5;
 *  KOB_SEARCHBLOCKS(&group, &count_only, &quiet, &results, node, any, any, &any_number, any, any, &any_number,
 *                   &any_number, any, NULL, &one, &first, &from, &last, &to, &none, &no_bytes, &count, &path_length,
 *                   NULL, NULL, NULL, NULL, &status);
 *  @endcode */
KOB_API void KOB_SEARCHBLOCKS(const int64_t* group, const int32_t* option, const int32_t* verbose, const int32_t* key,
                              const char* etyp, const char* etypvar, const char* etypzone, const int32_t* zoneid,
                              const char* etypframe, const char* series, const int32_t* matrixtype,
                              const int32_t* entid, const char* name2, const void* unused14, const int32_t* nindex,
                              const int32_t* indexident_low, const double* indexval_low, const int32_t* indexident_high,
                              const double* indexval_high, const int32_t* capacity, const int64_t* path_size,
                              int32_t* count, int64_t* path_length, int32_t* keys, int64_t* offsets, char* paths,
                              char* typenames, int32_t* status);

/** @} */

/** @defgroup model Model description
 *
 *  The writers of this group refuse a block that exists already (status -1) and leave it as it was; only
 *  KOB_WRITE_PROPERTIES() writes into a group that the caller opened. They leave the group of the block open;
 *  KOB_CLOSE() closes it. Their readers are called first for the attributes, which tell the sizes, then for the arrays:
 *  @code{.c}
 *  int32_t attributes = 1, arrays = 2, nvar, ncoo, status, filter_flags, filter_params[2];
 *  char etypvar[256];
 *  KOB_READ_VARIABLEGROUP(&block, &attributes, NULL, etypvar, &nvar, &ncoo, NULL, NULL, NULL, NULL, NULL, &status);
 *  int32_t* cnt = malloc(nvar * sizeof *cnt);
 *  int32_t* offs = malloc(nvar * sizeof *offs);
 *  char* varkey = malloc(nvar * 256);
 *  KOB_READ_VARIABLEGROUP(&block, &arrays, NULL, etypvar, &nvar, &ncoo, cnt, offs, varkey, &filter_flags,
 *                         filter_params, &status);
 *  @endcode
 *  @{ */

/** Writes the system block: title, producer, dates, base units and derived units; a file has one.
 *
 *  Derived unit i is udscal[i] times the product of its ndbunit[i] base units, each to the power of its exponent. The
 *  factors of all derived units stand one behind the other in udbid and udbexp: nfactor, the sum of ndbunit, in all.
 *  Placed as `constant/system/kobblock`.
 *  @param[in]  group         int64 [1], group from KOB_OPEN()
 *  @param[in]  title         text256 [1], title of the results
 *  @param[in]  sys           text256 [1], name of the producing system
 *  @param[in]  solver_name   text256 [1], solver name
 *  @param[in]  solver_vers   text256 [1], solver version
 *  @param[in]  cdate         text8 [1], date of creation, stored as it is
 *  @param[in]  ctime         text8 [1], time of creation
 *  @param[in]  mdate         text8 [1], date of modification
 *  @param[in]  mtime         text8 [1], time of modification
 *  @param[in]  nbunit        int32 [1], number of base units
 *  @param[in]  ndunit        int32 [1], number of derived units
 *  @param[in]  ubid          int32 [nbunit], identifiers of the base units
 *  @param[in]  ubtyp         text256 [nbunit], kinds of quantity
 *  @param[in]  ubnam         text256 [nbunit], names
 *  @param[in]  ubshift       double [nbunit], shifts
 *  @param[in]  ubcon         double [nbunit], conversion factors
 *  @param[in]  udid          int32 [ndunit], identifiers of the derived units
 *  @param[in]  udnam         text256 [ndunit], names
 *  @param[in]  udscal        double [ndunit], scale factors
 *  @param[in]  ndbunit       int32 [ndunit], number of base-unit factors of each derived unit
 *  @param[in]  udbid         int32 [nfactor], base-unit identifiers of the factors
 *  @param[in]  udbexp        double [nfactor], exponents of the factors
 *  @param[in]  filter_flags  int32 [1], see @ref filters; bit 128 has no effect here
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  float_size    int32 [1], stored size of the doubles, see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -1 exists already; -8, -10 the group cannot be created, opened;
 *                            otherwise see @ref storage_codes */
KOB_API void KOB_WRITE_SYSTEM(const int64_t* group, const char* title, const char* sys, const char* solver_name,
                              const char* solver_vers, const char* cdate, const char* ctime, const char* mdate,
                              const char* mtime, const int32_t* nbunit, const int32_t* ndunit, const int32_t* ubid,
                              const char* ubtyp, const char* ubnam, const double* ubshift, const double* ubcon,
                              const int32_t* udid, const char* udnam, const double* udscal, const int32_t* ndbunit,
                              const int32_t* udbid, const double* udbexp, const int32_t* filter_flags,
                              const int32_t* filter_params, const int32_t* float_size, int32_t* status);

/** Reads the system block.
 *
 *  Mode 1 fills the attributes alone and leaves the other arguments untouched. The length of udbid and udbexp is the
 *  sum of ndbunit, which only mode 2 reads: provide enough room, or ask HDF5 for the extent of "udbid".
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  mode          int32 [1], 1: attributes; 2: everything
 *  @param[out] title         text256 [1], title of the results
 *  @param[out] sys           text256 [1], name of the producing system
 *  @param[out] solver_name   text256 [1], solver name
 *  @param[out] solver_vers   text256 [1], solver version
 *  @param[out] cdate         text8 [1], date of creation
 *  @param[out] ctime         text8 [1], time of creation
 *  @param[out] mdate         text8 [1], date of modification
 *  @param[out] mtime         text8 [1], time of modification
 *  @param[out] nbunit        int32 [1], number of base units
 *  @param[out] ndunit        int32 [1], number of derived units
 *  @param[out] ubid          int32 [nbunit], identifiers of the base units
 *  @param[out] ubtyp         text256 [nbunit], kinds of quantity
 *  @param[out] ubnam         text256 [nbunit], names
 *  @param[out] ubshift       double [nbunit], shifts
 *  @param[out] ubcon         double [nbunit], conversion factors
 *  @param[out] udid          int32 [ndunit], identifiers of the derived units
 *  @param[out] udnam         text256 [ndunit], names
 *  @param[out] udscal        double [ndunit], scale factors
 *  @param[out] ndbunit       int32 [ndunit], number of base-unit factors of each derived unit
 *  @param[out] udbid         int32 [nfactor], base-unit identifiers of the factors
 *  @param[out] udbexp        double [nfactor], exponents of the factors
 *  @param[out] filter_flags  int32 [1], filters of "udbexp", see @ref filters; 0 if that is empty
 *  @param[out] filter_params int32 [2], their parameters
 *  @param[out] status        int32 [1], 0 read; -1 invalid handle or not a system block; -3 another mode (the
 *                            attributes are filled in then); otherwise see @ref storage_codes */
KOB_API void KOB_READ_SYSTEM(const int64_t* block, const int32_t* mode, char* title, char* sys, char* solver_name,
                             char* solver_vers, char* cdate, char* ctime, char* mdate, char* mtime, int32_t* nbunit,
                             int32_t* ndunit, int32_t* ubid, char* ubtyp, char* ubnam, double* ubshift, double* ubcon,
                             int32_t* udid, char* udnam, double* udscal, int32_t* ndbunit, int32_t* udbid,
                             double* udbexp, int32_t* filter_flags, int32_t* filter_params, int32_t* status);

/** Writes the index block, which says how states are identified; a file has one.
 *
 *  Placed as `constant/indices/kobblock`.
 *  @param[in]  group   int64 [1], group from KOB_OPEN()
 *  @param[in]  nindex  int32 [1], number of index values that identify a state
 *  @param[in]  etypvar text256 [1], name of the variable group that describes the index values
 *  @param[in]  unused4 unused [1], not read
 *  @param[in]  unused5 unused [1], not read
 *  @param[out] status  int32 [1], 0 written; -1 exists already; -8, -10 the group cannot be created, opened;
 *                      otherwise see @ref storage_codes */
KOB_API void KOB_WRITE_INDEX(const int64_t* group, const int32_t* nindex, const char* etypvar, const void* unused4,
                             const void* unused5, int32_t* status);

/** Reads the index block.
 *  @param[in]  block   int64 [1], group of the block
 *  @param[in]  unused2 unused [1], not read
 *  @param[out] nindex  int32 [1], number of index values that identify a state
 *  @param[out] etypvar text256 [1], name of the variable group that describes the index values
 *  @param[in]  unused5 unused [1], not read
 *  @param[in]  unused6 unused [1], not read
 *  @param[out] status  int32 [1], 0 read; -1 invalid handle or not an index block; otherwise see @ref storage_codes */
KOB_API void KOB_READ_INDEX(const int64_t* block, const void* unused2, int32_t* nindex, char* etypvar,
                            const void* unused5, const void* unused6, int32_t* status);

/** Writes a variable group block: a named list of variables, to which other blocks refer by its name.
 *
 *  Placed as `constant/variablegroup/<etypvar>/kobblock`. The numbers are stored as given; the library relates none of
 *  them to another.
 *  @param[in]  group         int64 [1], group from KOB_OPEN()
 *  @param[in]  unused2       unused [1], not read
 *  @param[in]  unused3       unused [1], not read
 *  @param[in]  etypvar       text256 [1], name of the variable group
 *  @param[in]  nvar          int32 [1], number of variables
 *  @param[in]  ncoo          int32 [1], number of components of the group
 *  @param[in]  cnt           int32 [nvar], number of components of each variable
 *  @param[in]  offs          int32 [nvar], offset of each variable
 *  @param[in]  varkey        text256 [nvar], keys of the variables, see KOB_WRITE_VARIABLE()
 *  @param[in]  filter_flags  int32 [1], see @ref filters
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[out] status        int32 [1], 0 written; -1 a group of this name exists already; -8, -10 the group cannot be
 *                            created, opened; otherwise see @ref storage_codes */
KOB_API void KOB_WRITE_VARIABLEGROUP(const int64_t* group, const void* unused2, const void* unused3,
                                     const char* etypvar, const int32_t* nvar, const int32_t* ncoo, const int32_t* cnt,
                                     const int32_t* offs, const char* varkey, const int32_t* filter_flags,
                                     const int32_t* filter_params, int32_t* status);

/** Reads a variable group block.
 *  @param[in]     block         int64 [1], group of the block
 *  @param[in]     mode          int32 [1], sum of 1: etypvar, nvar, ncoo; 2: cnt, offs, varkey and the filters. Other
 *                               bits have no effect; without any the key is checked and nothing is read
 *  @param[in]     unused3       unused [1], not read
 *  @param[out]    etypvar       text256 [1], name of the variable group
 *  @param[in,out] nvar          int32 [1], number of variables; input if mode lacks 1
 *  @param[out]    ncoo          int32 [1], number of components of the group
 *  @param[out]    cnt           int32 [nvar], number of components of each variable
 *  @param[out]    offs          int32 [nvar], offset of each variable
 *  @param[out]    varkey        text256 [nvar], keys of the variables
 *  @param[out]    filter_flags  int32 [1], filters of the last dataset read, see @ref filters; 0 if there is none
 *  @param[out]    filter_params int32 [2], their parameters
 *  @param[out]    status        int32 [1], 0 read; -1 invalid handle or not a variable group block; otherwise see
 *                               @ref storage_codes */
KOB_API void KOB_READ_VARIABLEGROUP(const int64_t* block, const int32_t* mode, const void* unused3, char* etypvar,
                                    int32_t* nvar, int32_t* ncoo, int32_t* cnt, int32_t* offs, char* varkey,
                                    int32_t* filter_flags, int32_t* filter_params, int32_t* status);

/** Writes a variable block: class, name, components, tensor rank and units of one variable.
 *
 *  The unit of component i is the product of mbunit[i] base units and mdunit[i] derived units of the system block, each
 *  to the power of its exponent; the factors of all components stand one behind the other. lenb is the sum of mbunit,
 *  lend the sum of mdunit; the writer computes both. Placed as `constant/variable/<varkey>/kobblock`. Meaning of
 *  tensor, varclass, type and vmap is the callers' affair.
 *  @param[in]  group         int64 [1], group from KOB_OPEN()
 *  @param[in]  unused2       unused [1], not read
 *  @param[in]  unused3       unused [1], not read
 *  @param[in]  varkey        text256 [1], key of the variable
 *  @param[in]  varclass      text256 [1], class
 *  @param[in]  varnam        text256 [1], name
 *  @param[in]  ncoo          int32 [1], number of components
 *  @param[in]  rank          int32 [1], tensor rank
 *  @param[in]  ndim          int32 [1], extent of each tensor index
 *  @param[in]  tensor        int32 [1], tensor kind
 *  @param[in]  type          text256 [1], type
 *  @param[in]  lvmap         int32 [1], positive: there is a component map (if rank is positive, too)
 *  @param[in]  subslen       int32 [1], length of subscr; positive: there are subscripts
 *  @param[in]  mbunit        int32 [ncoo], number of base-unit factors of each component
 *  @param[in]  mdunit        int32 [ncoo], number of derived-unit factors of each component
 *  @param[in]  ubid          int32 [lenb], identifiers of the base units
 *  @param[in]  ubexp         double [lenb], their exponents
 *  @param[in]  udid          int32 [lend], identifiers of the derived units
 *  @param[in]  udexp         double [lend], their exponents
 *  @param[in]  subscr        char [subslen], subscripts of all components, one behind the other
 *  @param[in]  subscnt       int32 [ncoo], number of characters of each component's subscript
 *  @param[in]  subsoffs      int32 [ncoo], position of each component's subscript
 *  @param[in]  vmap          double [ncoo, ndim, ..., ndim], component map, rank times ndim
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the doubles, bit 128 reaches vmap alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  float_size    int32 [1], stored size of the doubles, see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -1 a variable of this key exists already; -8, -10 the group cannot
 *                            be created, opened; otherwise see @ref storage_codes */
KOB_API void KOB_WRITE_VARIABLE(const int64_t* group, const void* unused2, const void* unused3, const char* varkey,
                                const char* varclass, const char* varnam, const int32_t* ncoo, const int32_t* rank,
                                const int32_t* ndim, const int32_t* tensor, const char* type, const int32_t* lvmap,
                                const int32_t* subslen, const int32_t* mbunit, const int32_t* mdunit,
                                const int32_t* ubid, const double* ubexp, const int32_t* udid, const double* udexp,
                                const char* subscr, const int32_t* subscnt, const int32_t* subsoffs, const double* vmap,
                                const int32_t* filter_flags, const int32_t* filter_params, const int32_t* float_size,
                                int32_t* status);

/** Reads a variable block.
 *
 *  Unlike the writer it has lenb and lend among its arguments.
 *  @param[in]     block         int64 [1], group of the block
 *  @param[in]     mode          int32 [1], sum of 1: the arguments varkey to lend; 2: mbunit to vmap and the filters.
 *                               Other bits have no effect; without any the key is checked and nothing is read
 *  @param[in]     unused3       unused [1], not read
 *  @param[out]    varkey        text256 [1], key of the variable
 *  @param[out]    varclass      text256 [1], class
 *  @param[out]    varnam        text256 [1], name
 *  @param[in,out] ncoo          int32 [1], number of components; input if mode lacks 1, like the other counts
 *  @param[in,out] rank          int32 [1], tensor rank
 *  @param[in,out] ndim          int32 [1], extent of each tensor index
 *  @param[out]    tensor        int32 [1], tensor kind
 *  @param[out]    type          text256 [1], type
 *  @param[in,out] lvmap         int32 [1], positive: there is a component map (if rank is positive, too)
 *  @param[in,out] subslen       int32 [1], length of subscr
 *  @param[in,out] lenb          int32 [1], number of base-unit factors
 *  @param[in,out] lend          int32 [1], number of derived-unit factors
 *  @param[out]    mbunit        int32 [ncoo], number of base-unit factors of each component
 *  @param[out]    mdunit        int32 [ncoo], number of derived-unit factors of each component
 *  @param[out]    ubid          int32 [lenb], identifiers of the base units
 *  @param[out]    ubexp         double [lenb], their exponents
 *  @param[out]    udid          int32 [lend], identifiers of the derived units
 *  @param[out]    udexp         double [lend], their exponents
 *  @param[out]    subscr        char [subslen], subscripts of all components; only if subslen is positive
 *  @param[out]    subscnt       int32 [ncoo], number of characters of each; only if subslen is positive
 *  @param[out]    subsoffs      int32 [ncoo], position of each; only if subslen is positive
 *  @param[out]    vmap          double [ncoo, ndim, ..., ndim], component map; only if lvmap and rank are positive
 *  @param[out]    filter_flags  int32 [1], filters of the last dataset read, see @ref filters; 0 if there is none
 *  @param[out]    filter_params int32 [2], their parameters
 *  @param[out]    status        int32 [1], 0 read; -1 invalid handle or not a variable block; otherwise see
 *                               @ref storage_codes */
KOB_API void KOB_READ_VARIABLE(const int64_t* block, const int32_t* mode, const void* unused3, char* varkey,
                               char* varclass, char* varnam, int32_t* ncoo, int32_t* rank, int32_t* ndim,
                               int32_t* tensor, char* type, int32_t* lvmap, int32_t* subslen, int32_t* lenb,
                               int32_t* lend, int32_t* mbunit, int32_t* mdunit, int32_t* ubid, double* ubexp,
                               int32_t* udid, double* udexp, char* subscr, int32_t* subscnt, int32_t* subsoffs,
                               double* vmap, int32_t* filter_flags, int32_t* filter_params, int32_t* status);

/** Writes the connectivities of one element type: identifier, part and nodes of each element, and parameters.
 *
 *  Placed with the names "connectivities" and etypelem, constant or in a state; one block per element type and state.
 *  @param[in]  group         int64 [1], group from KOB_OPEN()
 *  @param[in]  etyp          text256 [1], entity type name of the elements
 *  @param[in]  etypelem      text256 [1], element type name
 *  @param[in]  etyppart      text256 [1], entity type name of the parts
 *  @param[in]  etypnode      text256 [1], entity type name of the nodes
 *  @param[in]  etypvar       text256 [1], variable group of the floating-point parameters; only if nbfloat is positive
 *  @param[in]  nele          int32 [1], number of elements
 *  @param[in]  npele         int32 [1], nodes per element
 *  @param[in]  ndim          int32 [1], dimension of the elements, stored as given
 *  @param[in]  nbint         int32 [1], integer parameters per element
 *  @param[in]  nbfloat       int32 [1], floating-point parameters per element
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexic       int32 [1], code of the index kind, stored as given
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  idele         int32 [nele], element identifiers
 *  @param[in]  pid           int32 [nele], part identifier of each element
 *  @param[in]  ic            int32 [nele, npele], node identifiers of each element
 *  @param[in]  iparam        int32 [nele, nbint], integer parameters
 *  @param[in]  fparam        double [nele, nbfloat], floating-point parameters
 *  @param[in]  state         int32 [1], state number; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; bit 128 has no effect here
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  float_size    int32 [1], stored size of the doubles, see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -1 exists already; -8, -10 the group cannot be created, opened;
 *                            otherwise see @ref storage_codes */
KOB_API void KOB_WRITE_CONNECTIVITIES(const int64_t* group, const char* etyp, const char* etypelem,
                                      const char* etyppart, const char* etypnode, const char* etypvar,
                                      const int32_t* nele, const int32_t* npele, const int32_t* ndim,
                                      const int32_t* nbint, const int32_t* nbfloat, const int32_t* nindex,
                                      const int32_t* indexic, const int32_t* indexident, const double* indexval,
                                      const int32_t* idele, const int32_t* pid, const int32_t* ic,
                                      const int32_t* iparam, const double* fparam, const int32_t* state,
                                      const int32_t* filter_flags, const int32_t* filter_params,
                                      const int32_t* float_size, int32_t* status);

/** Reads the connectivities of one element type, by sections.
 *
 *  A call that reads nothing behind the key (mode 0, or mode 2 of a constant block) reports the key, 300, as its
 *  status.
 *  @param[in]     block         int64 [1], group of the block
 *  @param[in]     mode          int32 [1], sum of 1: etyp to indexic; 2: indexident, indexval; 4: idele, pid; 8: ic,
 *                               iparam, fparam and the filters. Other bits have no effect
 *  @param[out]    etyp          text256 [1], entity type name of the elements
 *  @param[out]    etypelem      text256 [1], element type name
 *  @param[out]    etyppart      text256 [1], entity type name of the parts
 *  @param[out]    etypnode      text256 [1], entity type name of the nodes
 *  @param[out]    etypvar       text256 [1], variable group of fparam; untouched if nbfloat is not positive
 *  @param[in,out] nele          int32 [1], number of elements; input if mode lacks 1, like the other counts
 *  @param[in,out] npele         int32 [1], nodes per element
 *  @param[out]    ndim          int32 [1], dimension of the elements
 *  @param[in,out] nbint         int32 [1], integer parameters per element
 *  @param[in,out] nbfloat       int32 [1], floating-point parameters per element
 *  @param[in,out] nindex        int32 [1], number of index values
 *  @param[out]    indexic       int32 [1], code of the index kind
 *  @param[out]    indexident    int32 [nindex], index identifiers of the state
 *  @param[out]    indexval      double [nindex], index values of the state
 *  @param[out]    idele         int32 [nele], element identifiers
 *  @param[out]    pid           int32 [nele], part identifier of each element
 *  @param[out]    ic            int32 [nele, npele], node identifiers of each element
 *  @param[out]    iparam        int32 [nele, nbint], integer parameters
 *  @param[out]    fparam        double [nele, nbfloat], floating-point parameters
 *  @param[out]    filter_flags  int32 [1], filters of "fparam", see @ref filters; 0 if there is none; mode 8 only
 *  @param[out]    filter_params int32 [2], their parameters; mode 8 only
 *  @param[out]    status        int32 [1], 0 read; 300 nothing to read; -1 invalid handle or not a connectivities
 *                               block; otherwise see @ref storage_codes */
KOB_API void KOB_READ_CONNECTIVITIES(const int64_t* block, const int32_t* mode, char* etyp, char* etypelem,
                                     char* etyppart, char* etypnode, char* etypvar, int32_t* nele, int32_t* npele,
                                     int32_t* ndim, int32_t* nbint, int32_t* nbfloat, int32_t* nindex, int32_t* indexic,
                                     int32_t* indexident, double* indexval, int32_t* idele, int32_t* pid, int32_t* ic,
                                     int32_t* iparam, double* fparam, int32_t* filter_flags, int32_t* filter_params,
                                     int32_t* status);

/** Writes free text of one kind: lines of equal length, constant or for one state.
 *
 *  Placed with the names "text" and etyptext, constant or in a state; one block per kind and state.
 *  @param[in]  group         int64 [1], group from KOB_OPEN()
 *  @param[in]  etyptext      text256 [1], name of the text kind
 *  @param[in]  nlines        int32 [1], number of lines
 *  @param[in]  length        int32 [1], characters of each line
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexic       int32 [1], code of the index kind, stored as given
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  line          char [nlines, length], the lines, one behind the other
 *  @param[in]  state         int32 [1], state number of the path; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; bit 128 has no effect here
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  float_size    int32 [1], stored size of the doubles, see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -1 exists already; -8, -10 the group cannot be created, opened;
 *                            otherwise see @ref storage_codes (-3001: length is below 1) */
KOB_API void KOB_WRITE_TEXT(const int64_t* group, const char* etyptext, const int32_t* nlines, const int32_t* length,
                            const int32_t* nindex, const int32_t* indexic, const int32_t* indexident,
                            const double* indexval, const char* line, const int32_t* state, const int32_t* filter_flags,
                            const int32_t* filter_params, const int32_t* float_size, int32_t* status);

/** Reads a text block, by sections.
 *
 *  A call that reads nothing behind the key (mode 0 or 4, or mode 2 of a constant block) reports the key, 40, as its
 *  status.
 *  @param[in]     block         int64 [1], group of the block
 *  @param[in]     mode          int32 [1], sum of 1: etyptext to indexic; 2: indexident, indexval; 8: line and the
 *                               filters. Other bits have no effect
 *  @param[out]    etyptext      text256 [1], name of the text kind
 *  @param[in,out] nlines        int32 [1], number of lines; input if mode lacks 1, like the other counts
 *  @param[in,out] length        int32 [1], characters of each line
 *  @param[in,out] nindex        int32 [1], number of index values
 *  @param[out]    indexic       int32 [1], code of the index kind
 *  @param[out]    indexident    int32 [nindex], index identifiers of the state
 *  @param[out]    indexval      double [nindex], index values of the state
 *  @param[out]    line          char [nlines, length], the lines, one behind the other
 *  @param[out]    filter_flags  int32 [1], filters of "line", see @ref filters; mode 8 only
 *  @param[out]    filter_params int32 [2], their parameters; mode 8 only
 *  @param[out]    status        int32 [1], 0 read; 40 nothing to read; -1 invalid handle or not a text block;
 *                               otherwise see @ref storage_codes (-6010: length is less than the stored one) */
KOB_API void KOB_READ_TEXT(const int64_t* block, const int32_t* mode, char* etyptext, int32_t* nlines, int32_t* length,
                           int32_t* nindex, int32_t* indexic, int32_t* indexident, double* indexval, char* line,
                           int32_t* filter_flags, int32_t* filter_params, int32_t* status);

/** Writes the parts of one part type: identifiers, and optionally titles, materials and colours.
 *
 *  Placed with the names "parts" and etyppart, constant or in a state; one block per part type and state. Meaning of
 *  mtyp and pcol is the callers' affair.
 *  @param[in]  group         int64 [1], group from KOB_OPEN()
 *  @param[in]  etyppart      text256 [1], part type name
 *  @param[in]  npart         int32 [1], number of parts
 *  @param[in]  off           int32 [1], sum of 1: no mid; 2: no mtyp; 4: no pcol
 *  @param[in]  length        int32 [1], characters of each title; 0 or less: no titles
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexic       int32 [1], code of the index kind, stored as given
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  pid           int32 [npart], part identifiers
 *  @param[in]  title         char [npart, length], titles, one behind the other; only if length is positive
 *  @param[in]  mid           int32 [npart], material identifier of each part; unless off has 1
 *  @param[in]  mtyp          int32 [npart], material type of each part; unless off has 2
 *  @param[in]  pcol          int32 [npart], colour number of each part; unless off has 4
 *  @param[in]  state         int32 [1], state number of the path; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; bit 128 has no effect here
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  float_size    int32 [1], stored size of the doubles, see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -1 exists already; -8, -10 the group cannot be created, opened;
 *                            otherwise see @ref storage_codes */
KOB_API void KOB_WRITE_PARTS(const int64_t* group, const char* etyppart, const int32_t* npart, const int32_t* off,
                             const int32_t* length, const int32_t* nindex, const int32_t* indexic,
                             const int32_t* indexident, const double* indexval, const int32_t* pid, const char* title,
                             const int32_t* mid, const int32_t* mtyp, const int32_t* pcol, const int32_t* state,
                             const int32_t* filter_flags, const int32_t* filter_params, const int32_t* float_size,
                             int32_t* status);

/** Reads the parts of one part type, by sections.
 *
 *  A call that reads nothing behind the key (mode 0 or 4, or mode 2 of a constant block) reports the key, 100, as its
 *  status.
 *  @param[in]     block         int64 [1], group of the block
 *  @param[in]     mode          int32 [1], sum of 1: etyppart to indexic; 2: indexident, indexval; 8: pid to pcol and
 *                               the filters. Other bits have no effect
 *  @param[out]    etyppart      text256 [1], part type name
 *  @param[in,out] npart         int32 [1], number of parts; input if mode lacks 1, like off and the other counts
 *  @param[in,out] off           int32 [1], sum of 1: no mid; 2: no mtyp; 4: no pcol
 *  @param[in,out] length        int32 [1], characters of each title; 0 or less: no titles
 *  @param[in,out] nindex        int32 [1], number of index values
 *  @param[out]    indexic       int32 [1], code of the index kind
 *  @param[out]    indexident    int32 [nindex], index identifiers of the state
 *  @param[out]    indexval      double [nindex], index values of the state
 *  @param[out]    pid           int32 [npart], part identifiers
 *  @param[out]    title         char [npart, length], titles, one behind the other; only if length is positive
 *  @param[out]    mid           int32 [npart], material identifier of each part; unless off has 1
 *  @param[out]    mtyp          int32 [npart], material type of each part; unless off has 2
 *  @param[out]    pcol          int32 [npart], colour number of each part; unless off has 4
 *  @param[out]    filter_flags  int32 [1], filters of the last dataset read, see @ref filters; mode 8 only
 *  @param[out]    filter_params int32 [2], their parameters; mode 8 only
 *  @param[out]    status        int32 [1], 0 read; 100 nothing to read; -1 invalid handle or not a parts block;
 *                               otherwise see @ref storage_codes (-6002: off asks for an array that is not there) */
KOB_API void KOB_READ_PARTS(const int64_t* block, const int32_t* mode, char* etyppart, int32_t* npart, int32_t* off,
                            int32_t* length, int32_t* nindex, int32_t* indexic, int32_t* indexident, double* indexval,
                            int32_t* pid, char* title, int32_t* mid, int32_t* mtyp, int32_t* pcol,
                            int32_t* filter_flags, int32_t* filter_params, int32_t* status);

/** Writes attributes of the entities of one type: identifiers, and optionally titles and further numbers.
 *
 *  Placed with the names "attributes" and etyp, constant or in a state; one block per entity type and state.
 *  @param[in]  group         int64 [1], group from KOB_OPEN()
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  nent          int32 [1], number of entities
 *  @param[in]  nuid          int32 [1], number of further identifiers of each entity
 *  @param[in]  length        int32 [1], characters of each title; 0 or less: no titles
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexic       int32 [1], code of the index kind, stored as given
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  entid         int32 [nent], entity identifiers
 *  @param[in]  title         char [nent, length], titles, one behind the other; only if length is positive
 *  @param[in]  uid           int32 [nent, nuid], further identifiers; only if nuid is positive
 *  @param[in]  state         int32 [1], state number of the path; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; bit 128 has no effect here
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  float_size    int32 [1], stored size of the doubles, see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -1 exists already; -8, -10 the group cannot be created, opened;
 *                            otherwise see @ref storage_codes */
KOB_API void KOB_WRITE_ATTRIBUTES(const int64_t* group, const char* etyp, const int32_t* nent, const int32_t* nuid,
                                  const int32_t* length, const int32_t* nindex, const int32_t* indexic,
                                  const int32_t* indexident, const double* indexval, const int32_t* entid,
                                  const char* title, const int32_t* uid, const int32_t* state,
                                  const int32_t* filter_flags, const int32_t* filter_params, const int32_t* float_size,
                                  int32_t* status);

/** Reads the attributes of the entities of one type, by sections.
 *
 *  A call that reads nothing behind the key (mode 0 or 4, or mode 2 of a constant block) reports the key, 200, as its
 *  status.
 *  @param[in]     block         int64 [1], group of the block
 *  @param[in]     mode          int32 [1], sum of 1: etyp to indexic; 2: indexident, indexval; 8: entid, title, uid and
 *                               the filters. Other bits have no effect
 *  @param[out]    etyp          text256 [1], entity type name
 *  @param[in,out] nent          int32 [1], number of entities; input if mode lacks 1, like the other counts
 *  @param[in,out] nuid          int32 [1], number of further identifiers of each entity
 *  @param[in,out] length        int32 [1], characters of each title; 0 or less: no titles
 *  @param[in,out] nindex        int32 [1], number of index values
 *  @param[out]    indexic       int32 [1], code of the index kind
 *  @param[out]    indexident    int32 [nindex], index identifiers of the state
 *  @param[out]    indexval      double [nindex], index values of the state
 *  @param[out]    entid         int32 [nent], entity identifiers
 *  @param[out]    title         char [nent, length], titles, one behind the other; only if length is positive
 *  @param[out]    uid           int32 [nent, nuid], further identifiers; only if nuid is positive
 *  @param[out]    filter_flags  int32 [1], filters of the last dataset read, see @ref filters; mode 8 only
 *  @param[out]    filter_params int32 [2], their parameters; mode 8 only
 *  @param[out]    status        int32 [1], 0 read; 200 nothing to read; -1 invalid handle or not an attributes block;
 *                               otherwise see @ref storage_codes */
KOB_API void KOB_READ_ATTRIBUTES(const int64_t* block, const int32_t* mode, char* etyp, int32_t* nent, int32_t* nuid,
                                 int32_t* length, int32_t* nindex, int32_t* indexic, int32_t* indexident,
                                 double* indexval, int32_t* entid, char* title, int32_t* uid, int32_t* filter_flags,
                                 int32_t* filter_params, int32_t* status);

/** Writes identifiers of the entities of one type, in a block of the same make as KOB_WRITE_ATTRIBUTES().
 *
 *  Placed with the names "identifiers" and etyp, constant or in a state; one block per entity type and state.
 *  @param[in]  group         int64 [1], group from KOB_OPEN()
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  nent          int32 [1], number of entities
 *  @param[in]  nuid          int32 [1], number of further identifiers of each entity
 *  @param[in]  length        int32 [1], characters of each title; 0 or less: no titles
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexic       int32 [1], code of the index kind, stored as given
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  entid         int32 [nent], entity identifiers
 *  @param[in]  title         char [nent, length], titles, one behind the other; only if length is positive
 *  @param[in]  uid           int32 [nent, nuid], further identifiers; only if nuid is positive
 *  @param[in]  state         int32 [1], state number of the path; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; bit 128 has no effect here
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  float_size    int32 [1], stored size of the doubles, see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -1 exists already; -8, -10 the group cannot be created, opened;
 *                            otherwise see @ref storage_codes */
KOB_API void KOB_WRITE_IDENTIFIERS(const int64_t* group, const char* etyp, const int32_t* nent, const int32_t* nuid,
                                   const int32_t* length, const int32_t* nindex, const int32_t* indexic,
                                   const int32_t* indexident, const double* indexval, const int32_t* entid,
                                   const char* title, const int32_t* uid, const int32_t* state,
                                   const int32_t* filter_flags, const int32_t* filter_params, const int32_t* float_size,
                                   int32_t* status);

/** Reads the identifiers of the entities of one type, by sections.
 *
 *  A call that reads nothing behind the key (mode 0 or 4, or mode 2 of a constant block) reports the key, 250, as its
 *  status.
 *  @param[in]     block         int64 [1], group of the block
 *  @param[in]     mode          int32 [1], sum of 1: etyp to indexic; 2: indexident, indexval; 8: entid, title, uid and
 *                               the filters. Other bits have no effect
 *  @param[out]    etyp          text256 [1], entity type name
 *  @param[in,out] nent          int32 [1], number of entities; input if mode lacks 1, like the other counts
 *  @param[in,out] nuid          int32 [1], number of further identifiers of each entity
 *  @param[in,out] length        int32 [1], characters of each title; 0 or less: no titles
 *  @param[in,out] nindex        int32 [1], number of index values
 *  @param[out]    indexic       int32 [1], code of the index kind
 *  @param[out]    indexident    int32 [nindex], index identifiers of the state
 *  @param[out]    indexval      double [nindex], index values of the state
 *  @param[out]    entid         int32 [nent], entity identifiers
 *  @param[out]    title         char [nent, length], titles, one behind the other; only if length is positive
 *  @param[out]    uid           int32 [nent, nuid], further identifiers; only if nuid is positive
 *  @param[out]    filter_flags  int32 [1], filters of the last dataset read, see @ref filters; mode 8 only
 *  @param[out]    filter_params int32 [2], their parameters; mode 8 only
 *  @param[out]    status        int32 [1], 0 read; 250 nothing to read; -1 invalid handle or not an identifiers block;
 *                               otherwise see @ref storage_codes */
KOB_API void KOB_READ_IDENTIFIERS(const int64_t* block, const int32_t* mode, char* etyp, int32_t* nent, int32_t* nuid,
                                  int32_t* length, int32_t* nindex, int32_t* indexic, int32_t* indexident,
                                  double* indexval, int32_t* entid, char* title, int32_t* uid, int32_t* filter_flags,
                                  int32_t* filter_params, int32_t* status);

/** Writes collectors: groups of entities, each with its members of one or more entity types.
 *
 *  nenttot, the sum of nent, is computed and stored by the writer. entid holds the members of the first collector and
 *  the first type, then of the first collector and the second type, and so on, in the order of nent. Placed with the
 *  names "collector" and etypcoll, constant or in a state; one block per collector type and state.
 *  @param[in]  group         int64 [1], group from KOB_OPEN()
 *  @param[in]  etypcoll      text256 [1], collector type name
 *  @param[in]  ncoll         int32 [1], number of collectors
 *  @param[in]  ntyp          int32 [1], number of member entity types
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexic       int32 [1], code of the index kind, stored as given
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  idcoll        int32 [ncoll], collector identifiers
 *  @param[in]  etyp          text256 [ntyp], names of the member entity types
 *  @param[in]  nent          int32 [ncoll, ntyp], number of members of each type in each collector
 *  @param[in]  entid         int32 [nenttot], identifiers of the members
 *  @param[in]  state         int32 [1], state number of the path; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; bit 128 has no effect here
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  float_size    int32 [1], stored size of the doubles, see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -1 exists already; -8, -10 the group cannot be created, opened;
 *                            otherwise see @ref storage_codes */
KOB_API void KOB_WRITE_COLLECTOR(const int64_t* group, const char* etypcoll, const int32_t* ncoll, const int32_t* ntyp,
                                 const int32_t* nindex, const int32_t* indexic, const int32_t* indexident,
                                 const double* indexval, const int32_t* idcoll, const char* etyp, const int32_t* nent,
                                 const int32_t* entid, const int32_t* state, const int32_t* filter_flags,
                                 const int32_t* filter_params, const int32_t* float_size, int32_t* status);

/** Reads collectors, in passes.
 *
 *  Unlike the writer it has nenttot among its arguments, in front of etypcoll.
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  mode          int32 [1], 0: attributes and state index; 1: attributes; 2: everything
 *  @param[out] nenttot       int32 [1], number of members of all collectors and types
 *  @param[out] etypcoll      text256 [1], collector type name
 *  @param[out] ncoll         int32 [1], number of collectors
 *  @param[out] ntyp          int32 [1], number of member entity types
 *  @param[out] nindex        int32 [1], number of index values; 0: constant
 *  @param[out] indexic       int32 [1], code of the index kind
 *  @param[out] indexident    int32 [nindex], index identifiers of the state; mode 0 and 2
 *  @param[out] indexval      double [nindex], index values of the state; mode 0 and 2
 *  @param[out] idcoll        int32 [ncoll], collector identifiers; mode 2, like all below
 *  @param[out] etyp          text256 [ntyp], names of the member entity types
 *  @param[out] nent          int32 [ncoll, ntyp], number of members of each type in each collector
 *  @param[out] entid         int32 [nenttot], identifiers of the members
 *  @param[out] filter_flags  int32 [1], filters of the last dataset read, see @ref filters
 *  @param[out] filter_params int32 [2], their parameters
 *  @param[out] status        int32 [1], 0 read; -1 invalid handle or not a collector block; -3 another mode (the
 *                            attributes are filled in then); otherwise see @ref storage_codes */
KOB_API void KOB_READ_COLLECTOR(const int64_t* block, const int32_t* mode, int32_t* nenttot, char* etypcoll,
                                int32_t* ncoll, int32_t* ntyp, int32_t* nindex, int32_t* indexic, int32_t* indexident,
                                double* indexval, int32_t* idcoll, char* etyp, int32_t* nent, int32_t* entid,
                                int32_t* filter_flags, int32_t* filter_params, int32_t* status);

/** Writes sections of a properties block, whole or some rows, into a group that the caller opened.
 *
 *  For each of nent entities of one type in one zone a properties block holds nbid identifiers, nbint integers,
 *  nbfloat numbers and nbstring texts. The group stays open. What exists already is overwritten. With section bit 16
 *  entid is written once into the shared group and linked into each block; where the shared group holds "entid"
 *  already, it is linked and not written again. Modes 1 and 2 write into tables that mode 0 created:
 *
 *  | Mode | idparam, iparam, fparam and cparam hold                                          |
 *  |------|----------------------------------------------------------------------------------|
 *  | 0    | all rows: `[nent, nb]`, where nb is nbid, nbint, nbfloat or nbstring             |
 *  | 1    | rows rows[0] to rows[0] + count - 1: `[count, nb]`                               |
 *  | 2    | the first column of the rows rows[0] to rows[count - 1]: `[count]`               |
 *
 *  @param[in]  groups        int64 [2], group of the block, from KOB_OPENAUTOPATH(); shared group, read with section
 *                            bit 16 only (one handle is enough without)
 *  @param[in]  sections      int32 [1], section bits, see @ref sections: 1: etyp to indexic; 2: indexident, indexval;
 *                            4: entid; 8: idparam to cparam; 16: shared entid
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  etypprop      text256 [1], property type name
 *  @param[in]  etypzone      text256 [1], zone name
 *  @param[in]  zoneid        int32 [1], zone number
 *  @param[in]  nent          int32 [1], number of entities
 *  @param[in]  nbid          int32 [1], identifiers per entity; below 1: no idparam
 *  @param[in]  nbint         int32 [1], integers per entity; below 1: no iparam
 *  @param[in]  nbfloat       int32 [1], numbers per entity; below 1: no fparam
 *  @param[in]  nbstring      int32 [1], texts per entity; below 1: no cparam
 *  @param[in]  length        int32 [1], characters of each text; 0 or less: no cparam
 *  @param[in]  nindex        int32 [1], number of index values; 0: constant
 *  @param[in]  indexic       int32 [1], code of the index kind, stored as given
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  entid         int32 [nent], entity identifiers
 *  @param[in]  idparam       int32 [nent, nbid], identifiers; with mode 1 and 2 as above, like all below
 *  @param[in]  iparam        int32 [nent, nbint], integers
 *  @param[in]  fparam        double [nent, nbfloat], numbers
 *  @param[in]  cparam        char [nent, nbstring, length], texts, one behind the other
 *  @param[in]  filter_flags  int32 [1], see @ref filters; bit 128 has no effect here
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  float_size    int32 [1], stored size of the doubles, see @ref value_size
 *  @param[in]  mode          int32 [1], 0: all rows; 1: a run of rows; 2: the first column of single rows; read with
 *                            section bit 8 only, like count and rows
 *  @param[in]  count         int64 [1], mode 1: number of rows; mode 2: number of points
 *  @param[in]  rows          int64 [count], mode 1: [1], first row; mode 2: the row of each point
 *  @param[out] status        int32 [1], 0 written; a negative handle; -999 unknown mode; otherwise see
 *                            @ref storage_codes (-3000: mode 1 or 2 without a table; -6031, -6032: outside of it) */
KOB_API void KOB_WRITE_PROPERTIES(const int64_t* groups, const int32_t* sections, const char* etyp,
                                  const char* etypprop, const char* etypzone, const int32_t* zoneid,
                                  const int32_t* nent, const int32_t* nbid, const int32_t* nbint,
                                  const int32_t* nbfloat, const int32_t* nbstring, const int32_t* length,
                                  const int32_t* nindex, const int32_t* indexic, const int32_t* indexident,
                                  const double* indexval, const int32_t* entid, const int32_t* idparam,
                                  const int32_t* iparam, const double* fparam, const char* cparam,
                                  const int32_t* filter_flags, const int32_t* filter_params, const int32_t* float_size,
                                  const int32_t* mode, const int64_t* count, const int64_t* rows, int32_t* status);

/** Reads sections of a properties block, whole or some rows; KOB_WRITE_PROPERTIES() has the table of modes.
 *
 *  A call that reads nothing behind the key (no section bit, bit 16, or bit 2 of a constant block) reports the key,
 *  500, as its status. Filters are not reported.
 *  @param[in]     block      int64 [1], group of the block
 *  @param[in]     sections   int32 [1], section bits 1, 2, 4, 8 as of the writer; others have no effect
 *  @param[out]    etyp       text256 [1], entity type name
 *  @param[out]    etypprop   text256 [1], property type name
 *  @param[out]    etypzone   text256 [1], zone name
 *  @param[out]    zoneid     int32 [1], zone number
 *  @param[in,out] nent       int32 [1], number of entities; input if sections lack 1, like the other counts
 *  @param[in,out] nbid       int32 [1], identifiers per entity; below 1: no idparam
 *  @param[in,out] nbint      int32 [1], integers per entity; below 1: no iparam
 *  @param[in,out] nbfloat    int32 [1], numbers per entity; below 1: no fparam
 *  @param[in,out] nbstring   int32 [1], texts per entity; below 1: no cparam
 *  @param[in,out] length     int32 [1], characters of each text; 0 or less: no cparam
 *  @param[in,out] nindex     int32 [1], number of index values; 0: constant
 *  @param[out]    indexic    int32 [1], code of the index kind
 *  @param[out]    indexident int32 [nindex], index identifiers of the state
 *  @param[out]    indexval   double [nindex], index values of the state
 *  @param[out]    entid      int32 [nent], entity identifiers
 *  @param[out]    idparam    int32 [nent, nbid], identifiers; mode 1 [count, nbid], mode 2 [count], like below
 *  @param[out]    iparam     int32 [nent, nbint], integers
 *  @param[out]    fparam     double [nent, nbfloat], numbers
 *  @param[out]    cparam     char [nent, nbstring, length], texts, one behind the other
 *  @param[in]     unused22   unused [1], not read
 *  @param[in]     unused23   unused [1], not read
 *  @param[in]     mode       int32 [1], 0: all rows; 1: a run of rows; 2: the first column of single rows; read with
 *                            section bit 8 only, like count and rows
 *  @param[in]     count      int64 [1], mode 1: number of rows; mode 2: number of points
 *  @param[in]     rows       int64 [count], mode 1: [1], first row; mode 2: the row of each point
 *  @param[out]    status     int32 [1], 0 read; 500 nothing to read; -1 invalid handle or not a properties block; -999
 *                            unknown mode; otherwise see @ref storage_codes */
KOB_API void KOB_READ_PROPERTIES(const int64_t* block, const int32_t* sections, char* etyp, char* etypprop,
                                 char* etypzone, int32_t* zoneid, int32_t* nent, int32_t* nbid, int32_t* nbint,
                                 int32_t* nbfloat, int32_t* nbstring, int32_t* length, int32_t* nindex,
                                 int32_t* indexic, int32_t* indexident, double* indexval, int32_t* entid,
                                 int32_t* idparam, int32_t* iparam, double* fparam, char* cparam, const void* unused22,
                                 const void* unused23, const int32_t* mode, const int64_t* count, const int64_t* rows,
                                 int32_t* status);

/** @} */

/** @defgroup results Results
 *
 *  A result writer writes into a block that exists already: everything is written again (KOB_WRITE_ACTIVFLAGS() alone
 *  refuses). The stored item "operator" is named operator_ here, since C++ reserves the word. Writes the displacements
 *  of two nodes at time 0.5, state 12:
 *  @code{.c}
 *  // NODE, DISPLACEMENT, BLANK: text256, padded with blanks
 *  int32_t nent = 2, ncoo = 3, no_zone = -1, fswitch = 0, dmpswitch = 0, nindex = 1, indexic = 0, indexident = 12;
 *  int32_t entid[] = {101, 102}, fidglob = 0, none = -1, plain = 0, params[] = {0, 0}, value_size = 8, status;
 *  double indexval = 0.5, res[] = {0.0, 0.0, 0.1, 0.0, 0.0, 0.2};
 *  KOB_WRITE_ENTITYRESULTS(&group, NODE, &nent, DISPLACEMENT, &ncoo, BLANK, &no_zone, BLANK, &fswitch, &dmpswitch,
 *                          &nindex, &indexic, &indexident, &indexval, entid, &fidglob, NULL, NULL, NULL, res, &none,
 *                          &none, &plain, params, &value_size, &status);
 *  @endcode
 *  @{ */

/** Writes the values of one variable for entities of one type: a table of nent rows and ncoo columns, for one state.
 *
 *  Placed with the names "entityresults", etyp, etypvar, etypzone, the zone number and the set number, constant or in a
 *  state. Where the block exists already its attributes and datasets are overwritten; counts must be the same then.
 *  @param[in]  group         int64 [1], group from KOB_OPEN()
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  nent          int32 [1], number of entities
 *  @param[in]  etypvar       text256 [1], name of the variable
 *  @param[in]  ncoo          int32 [1], number of components
 *  @param[in]  etypzone      text256 [1], zone name; blank: none
 *  @param[in]  zoneid        int32 [1], zone number; negative: none
 *  @param[in]  etypframe     text256 [1], name of the frame of the components
 *  @param[in]  fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each entity, fid
 *  @param[in]  dmpswitch     int32 [1], 1: operator and weight are written; any other: they are not
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexic       int32 [1], code of the index kind, stored as given
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  entid         int32 [nent], entity identifiers
 *  @param[in]  fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[in]  fid           int32 [nent], frame identifiers; fswitch 1 only
 *  @param[in]  operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[in]  weight        double [nent], combination weight of each entity; dmpswitch 1 only
 *  @param[in]  res           double [nent, ncoo(, 2)], values; complex with value_size 16 and 32
 *  @param[in]  set           int32 [1], set number of the path; negative: none
 *  @param[in]  state         int32 [1], state number of the path; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the doubles, bit 128 reaches res alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  value_size    int32 [1], see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -1 the block cannot be closed; -8, -10 the group cannot be created,
 *                            opened; -123 fswitch is neither 0 nor 1; otherwise see @ref storage_codes */
KOB_API void KOB_WRITE_ENTITYRESULTS(const int64_t* group, const char* etyp, const int32_t* nent, const char* etypvar,
                                     const int32_t* ncoo, const char* etypzone, const int32_t* zoneid,
                                     const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch,
                                     const int32_t* nindex, const int32_t* indexic, const int32_t* indexident,
                                     const double* indexval, const int32_t* entid, const int32_t* fidglob,
                                     const int32_t* fid, const char* operator_, const double* weight, const double* res,
                                     const int32_t* set, const int32_t* state, const int32_t* filter_flags,
                                     const int32_t* filter_params, const int32_t* value_size, int32_t* status);

/** Writes sections of an entity results block, the whole table or pieces of it, into a group that the caller opened.
 *
 *  The group stays open. With section bit 16 the identifier datasets are written once into the shared group and linked
 *  into each block; where the shared group holds "entid" already, it is linked and not written again.
 *
 *  "res" always has the extents `[nent, ncoo(, 2)]`: the first piece creates the whole table, and what is never written
 *  holds the fill value (10000 under scale-offset, else 0). rank is 2, of complex values 3.
 *  @param[in]  groups        int64 [2], group of the block, from KOB_OPENAUTOPATH(); shared group, read with section
 *                            bit 16 only (one handle is enough without)
 *  @param[in]  sections      int32 [1], section bits 1, 2, 4, 8, 16, see @ref sections
 *  @param[in]  unused3       unused [1], not read
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  nent          int32 [1], number of entities
 *  @param[in]  etypvar       text256 [1], name of the variable
 *  @param[in]  ncoo          int32 [1], number of components
 *  @param[in]  etypzone      text256 [1], zone name
 *  @param[in]  zoneid        int32 [1], zone number
 *  @param[in]  etypframe     text256 [1], name of the frame of the components
 *  @param[in]  fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each entity, fid
 *  @param[in]  dmpswitch     int32 [1], 1: operator and weight are written; any other: they are not
 *  @param[in]  nindex        int32 [1], number of index values; 0: constant
 *  @param[in]  indexic       int32 [1], code of the index kind, stored as given
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state, always 8-byte
 *  @param[in]  entid         int32 [nent], entity identifiers
 *  @param[in]  fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[in]  fid           int32 [nent], frame identifiers; fswitch 1 only
 *  @param[in]  operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[in]  weight        double [nent], combination weights, always 8-byte; dmpswitch 1 only
 *  @param[in]  res           real [nent, ncoo(, 2)], values; with mode 1 [count], with mode 2 [number of points]
 *  @param[in]  memory_size   int32 [1], size of the numbers in res: 4 or 8
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the floating-point data, bit 128 reaches res alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  value_size    int32 [1], see @ref value_size
 *  @param[in]  mode          int32 [1], 0: the whole table; 1: a block of it; 2: single values
 *  @param[in]  count         int64 [rank], mode 1: extents of the block; mode 2: [1], number of points
 *  @param[in]  start         int64 [rank], mode 1: first row, first column; mode 2: [points, rank], coordinates
 *  @param[out] status        int32 [1], 0 written; a negative handle; -123 fswitch is neither 0 nor 1; -999 unknown
 *                            mode; otherwise see @ref storage_codes (-6031, -6032: outside of the table) */
KOB_API void KOB_WRITE_ENTITYRESULTS2(const int64_t* groups, const int32_t* sections, const void* unused3,
                                      const char* etyp, const int32_t* nent, const char* etypvar, const int32_t* ncoo,
                                      const char* etypzone, const int32_t* zoneid, const char* etypframe,
                                      const int32_t* fswitch, const int32_t* dmpswitch, const int32_t* nindex,
                                      const int32_t* indexic, const int32_t* indexident, const double* indexval,
                                      const int32_t* entid, const int32_t* fidglob, const int32_t* fid,
                                      const char* operator_, const double* weight, const void* res,
                                      const int32_t* memory_size, const int32_t* filter_flags,
                                      const int32_t* filter_params, const int32_t* value_size, const int32_t* mode,
                                      const int64_t* count, const int64_t* start, int32_t* status);

/** Reads an entity results block, in passes.
 *  @param[in]     block         int64 [1], group of the block
 *  @param[in]     pass          int32 [1], 0: attributes and state index; 1: attributes; 2: everything
 *  @param[out]    etyp          text256 [1], entity type name
 *  @param[out]    nent          int32 [1], number of entities
 *  @param[out]    etypvar       text256 [1], name of the variable
 *  @param[out]    ncoo          int32 [1], number of components
 *  @param[out]    etypzone      text256 [1], zone name
 *  @param[out]    zoneid        int32 [1], zone number
 *  @param[out]    etypframe     text256 [1], name of the frame of the components
 *  @param[out]    fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each entity, fid
 *  @param[out]    dmpswitch     int32 [1], 1: the block holds operator and weight
 *  @param[out]    nindex        int32 [1], number of index values; 0: constant
 *  @param[out]    indexic       int32 [1], code of the index kind
 *  @param[out]    indexident    int32 [nindex], index identifiers of the state; pass 0 and 2
 *  @param[out]    indexval      double [nindex], index values of the state; pass 0 and 2
 *  @param[out]    entid         int32 [nent], entity identifiers; pass 2, like all below
 *  @param[out]    fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[out]    fid           int32 [nent], frame identifiers; fswitch 1 only
 *  @param[out]    operator_     text256 [ncoo], combination operators; dmpswitch 1 only
 *  @param[out]    weight        double [nent], combination weights; dmpswitch 1 only
 *  @param[out]    res           double [nent, ncoo(, 2)], values; complex if the status is 1001
 *  @param[out]    filter_flags  int32 [1], filters of "res", see @ref filters
 *  @param[out]    filter_params int32 [2], their parameters
 *  @param[out]    status        int32 [1], 1000 read, real; 1001 read, complex; -1 invalid handle or not an entity
 *                               results block; -3 another pass; -123 fswitch is neither 0 nor 1; otherwise see
 *                               @ref storage_codes */
KOB_API void KOB_READ_ENTITYRESULTS(const int64_t* block, const int32_t* pass, char* etyp, int32_t* nent, char* etypvar,
                                    int32_t* ncoo, char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch,
                                    int32_t* dmpswitch, int32_t* nindex, int32_t* indexic, int32_t* indexident,
                                    double* indexval, int32_t* entid, int32_t* fidglob, int32_t* fid, char* operator_,
                                    double* weight, double* res, int32_t* filter_flags, int32_t* filter_params,
                                    int32_t* status);

/** Reads sections of an entity results block, the whole table or pieces of it.
 *
 *  Without section bit 1 the counts and switches are inputs. In pieces rank is 2, of complex values 3; nothing else of
 *  res is touched.
 *  @param[in]     block         int64 [1], group of the block
 *  @param[in]     sections      int32 [1], section bits 1, 2, 4, 8, see @ref sections
 *  @param[in]     unused3       unused [1], not read
 *  @param[out]    etyp          text256 [1], entity type name
 *  @param[in,out] nent          int32 [1], number of entities
 *  @param[out]    etypvar       text256 [1], name of the variable
 *  @param[in,out] ncoo          int32 [1], number of components
 *  @param[out]    etypzone      text256 [1], zone name
 *  @param[out]    zoneid        int32 [1], zone number
 *  @param[out]    etypframe     text256 [1], name of the frame of the components
 *  @param[in,out] fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each entity, fid
 *  @param[in,out] dmpswitch     int32 [1], 1: the block holds operator and weight
 *  @param[in,out] nindex        int32 [1], number of index values; 0: constant
 *  @param[out]    indexic       int32 [1], code of the index kind
 *  @param[out]    indexident    int32 [nindex], index identifiers of the state
 *  @param[out]    indexval      double [nindex], index values of the state, always 8-byte
 *  @param[out]    entid         int32 [nent], entity identifiers
 *  @param[out]    fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[out]    fid           int32 [nent], frame identifiers; fswitch 1 only
 *  @param[out]    operator_     text256 [ncoo], combination operators; dmpswitch 1 only
 *  @param[out]    weight        double [nent], combination weights, always 8-byte; dmpswitch 1 only
 *  @param[out]    res           real [nent, ncoo(, 2)], values; with mode 1 [count], with mode 2 [number of points]
 *  @param[in]     memory_size   int32 [1], size of the numbers in res: 4 or 8
 *  @param[out]    filter_flags  int32 [1], filters of "res", see @ref filters; section bit 8 only
 *  @param[out]    filter_params int32 [2], their parameters; section bit 8 only
 *  @param[in]     mode          int32 [1], 0: the whole table; 1: a block of it; 2: single values
 *  @param[in]     count         int64 [rank], mode 1: extents of the block; mode 2: [1], number of points
 *  @param[in]     start         int64 [rank], mode 1: first row, first column; mode 2: [points, rank], coordinates
 *  @param[out]    status        int32 [1], 1000 read, real; 1001 read, complex; -1 invalid handle or not an entity
 *                               results block; -123 fswitch is neither 0 nor 1; -999 unknown mode; otherwise see
 *                               @ref storage_codes (-6031, -6032: outside of the table) */
KOB_API void KOB_READ_ENTITYRESULTS2(const int64_t* block, const int32_t* sections, const void* unused3, char* etyp,
                                     int32_t* nent, char* etypvar, int32_t* ncoo, char* etypzone, int32_t* zoneid,
                                     char* etypframe, int32_t* fswitch, int32_t* dmpswitch, int32_t* nindex,
                                     int32_t* indexic, int32_t* indexident, double* indexval, int32_t* entid,
                                     int32_t* fidglob, int32_t* fid, char* operator_, double* weight, void* res,
                                     const int32_t* memory_size, int32_t* filter_flags, int32_t* filter_params,
                                     const int32_t* mode, const int64_t* count, const int64_t* start, int32_t* status);

/** Writes the activation flag of each entity of one type, constant or for one state.
 *
 *  Placed with the names "activflags" and etyp, constant or in a state; one block per entity type and state: unlike the
 *  other result writers this one refuses a block that exists already. It leaves the group of the block open.
 *  @param[in]  group         int64 [1], group from KOB_OPEN()
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  nent          int32 [1], number of entities
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexic       int32 [1], code of the index kind, stored as given
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  entid         int32 [nent], entity identifiers, any order
 *  @param[in]  flags         int32 [nent], activation flag of each entity
 *  @param[in]  state         int32 [1], state number of the path; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; bit 128 has no effect here
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  float_size    int32 [1], stored size of the doubles, see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -1 exists already; -8, -10 the group cannot be created, opened;
 *                            otherwise see @ref storage_codes */
KOB_API void KOB_WRITE_ACTIVFLAGS(const int64_t* group, const char* etyp, const int32_t* nent, const int32_t* nindex,
                                  const int32_t* indexic, const int32_t* indexident, const double* indexval,
                                  const int32_t* entid, const int32_t* flags, const int32_t* state,
                                  const int32_t* filter_flags, const int32_t* filter_params, const int32_t* float_size,
                                  int32_t* status);

/** Reads activation flags, in passes.
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 0: attributes and state index; 1: attributes; 2: everything
 *  @param[out] etyp          text256 [1], entity type name
 *  @param[out] nent          int32 [1], number of entities
 *  @param[out] nindex        int32 [1], number of index values; 0: constant
 *  @param[out] indexic       int32 [1], code of the index kind
 *  @param[out] indexident    int32 [nindex], index identifiers of the state; pass 0 and 2
 *  @param[out] indexval      double [nindex], index values of the state; pass 0 and 2
 *  @param[out] entid         int32 [nent], entity identifiers; pass 2, like all below
 *  @param[out] flags         int32 [nent], activation flag of each entity
 *  @param[out] filter_flags  int32 [1], filters of "status", where the flags are stored, see @ref filters
 *  @param[out] filter_params int32 [2], their parameters
 *  @param[out] status        int32 [1], 0 read; -1 invalid handle or not an activation flags block; -3 another pass
 *                            (the attributes are filled in then); otherwise see @ref storage_codes */
KOB_API void KOB_READ_ACTIVFLAGS(const int64_t* block, const int32_t* pass, char* etyp, int32_t* nent, int32_t* nindex,
                                 int32_t* indexic, int32_t* indexident, double* indexval, int32_t* entid,
                                 int32_t* flags, int32_t* filter_flags, int32_t* filter_params, int32_t* status);

/** Writes the values of one variable at the locations (integration points, layers, nodes) in elements of one type, for
 *  one state.
 *
 *  Placed with the names "elementresults", etypelem, etypvar, etypzone, the zone number and the set number, constant or
 *  in a state. Where the block exists already its attributes and datasets are overwritten; counts must be the same
 *  then. Leaves the group of the block open.
 *  @param[in]  group         int64 [1], group from KOB_OPEN()
 *  @param[in]  etypelem      text256 [1], element type name
 *  @param[in]  nele          int32 [1], number of elements
 *  @param[in]  etypvar       text256 [1], name of the variable
 *  @param[in]  ncoo          int32 [1], number of components
 *  @param[in]  numl          int32 [1], number of locations in each element
 *  @param[in]  ndim          int32 [1], number of coordinates of a location
 *  @param[in]  etypzone      text256 [1], zone name; blank: none
 *  @param[in]  zoneid        int32 [1], zone number; negative: none
 *  @param[in]  etypframe     text256 [1], name of the frame of the components
 *  @param[in]  fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each element, fid; 2: a frame
 *                            for each element and location, fid
 *  @param[in]  dmpswitch     int32 [1], 1: operator and weight are written; any other: they are not
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexic       int32 [1], code of the index kind, stored as given
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  idele         int32 [nele], element identifiers
 *  @param[in]  fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[in]  fid           int32 [nele] or [nele, numl], frame identifiers; fswitch 1 or 2 only
 *  @param[in]  eloc          double [numl, ndim], coordinates of the locations
 *  @param[in]  operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[in]  weight        double [nele], combination weight of each element; dmpswitch 1 only
 *  @param[in]  res           double [nele, numl, ncoo(, 2)], values; complex with value_size 16 and 32
 *  @param[in]  set           int32 [1], set number of the path; negative: none
 *  @param[in]  state         int32 [1], state number of the path; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the doubles, bit 128 reaches res alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  value_size    int32 [1], see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -8, -10 the group cannot be created, opened; -123 fswitch is neither
 *                            0, 1 nor 2; otherwise see @ref storage_codes */
KOB_API void KOB_WRITE_ELEMENTRESULTS(const int64_t* group, const char* etypelem, const int32_t* nele,
                                      const char* etypvar, const int32_t* ncoo, const int32_t* numl,
                                      const int32_t* ndim, const char* etypzone, const int32_t* zoneid,
                                      const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch,
                                      const int32_t* nindex, const int32_t* indexic, const int32_t* indexident,
                                      const double* indexval, const int32_t* idele, const int32_t* fidglob,
                                      const int32_t* fid, const double* eloc, const char* operator_,
                                      const double* weight, const double* res, const int32_t* set, const int32_t* state,
                                      const int32_t* filter_flags, const int32_t* filter_params,
                                      const int32_t* value_size, int32_t* status);

/** Reads an element results block, in passes.
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 0: attributes and state index; 1: attributes; 2: everything
 *  @param[out] etypelem      text256 [1], element type name
 *  @param[out] nele          int32 [1], number of elements
 *  @param[out] etypvar       text256 [1], name of the variable
 *  @param[out] ncoo          int32 [1], number of components
 *  @param[out] numl          int32 [1], number of locations in each element
 *  @param[out] ndim          int32 [1], number of coordinates of a location
 *  @param[out] etypzone      text256 [1], zone name
 *  @param[out] zoneid        int32 [1], zone number
 *  @param[out] etypframe     text256 [1], name of the frame of the components
 *  @param[out] fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each element, fid; 2: a frame
 *                            for each element and location, fid
 *  @param[out] dmpswitch     int32 [1], 1: the block holds operator and weight
 *  @param[out] nindex        int32 [1], number of index values; 0: constant
 *  @param[out] indexic       int32 [1], code of the index kind
 *  @param[out] indexident    int32 [nindex], index identifiers of the state; pass 0 and 2
 *  @param[out] indexval      double [nindex], index values of the state; pass 0 and 2
 *  @param[out] idele         int32 [nele], element identifiers; pass 2, like all below
 *  @param[out] fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[out] fid           int32 [nele] or [nele, numl], frame identifiers; fswitch 1 or 2 only
 *  @param[out] eloc          double [numl, ndim], coordinates of the locations
 *  @param[out] operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[out] weight        double [nele], combination weight of each element; dmpswitch 1 only
 *  @param[out] res           double [nele, numl, ncoo(, 2)], values; complex if the status is 1101
 *  @param[out] filter_flags  int32 [1], filters of "res", see @ref filters
 *  @param[out] filter_params int32 [2], their parameters
 *  @param[out] status        int32 [1], 1100 read, real; 1101 read, complex; -1 invalid handle or not an element
 *                            results block; -3 another pass (nothing is read); -123 fswitch is neither 0, 1 nor 2;
 *                            otherwise see @ref storage_codes */
KOB_API void KOB_READ_ELEMENTRESULTS(const int64_t* block, const int32_t* pass, char* etypelem, int32_t* nele,
                                     char* etypvar, int32_t* ncoo, int32_t* numl, int32_t* ndim, char* etypzone,
                                     int32_t* zoneid, char* etypframe, int32_t* fswitch, int32_t* dmpswitch,
                                     int32_t* nindex, int32_t* indexic, int32_t* indexident, double* indexval,
                                     int32_t* idele, int32_t* fidglob, int32_t* fid, double* eloc, char* operator_,
                                     double* weight, double* res, int32_t* filter_flags, int32_t* filter_params,
                                     int32_t* status);

/** @} */

/** @defgroup series Multi-state results
 *
 *  A multi-state block holds a whole series of states. Rows of states are absolute: a call names the rows it writes,
 *  counted from 0, and what is there already is overwritten. The number of rows (nstate) never shrinks; rows that were
 *  skipped hold the fill value, see @ref filters. The first write of growable data decides their filters, and
 *  KOB_SET_CHUNK_SIZE() the states per chunk. Writes a run of states one by one:
 *  @code{.c}
 *  // RUN, NODE, DISPLACEMENT, BLANK: text256, padded with blanks; the other arguments as for KOB_WRITE_ENTITYRESULTS()
 *  for (int32_t step = 0; step < steps; ++step) {
 *      int32_t state = step == 0 ? 1 : -step;   // row 0 is the first of a run of one state, others go by their number
 *      KOB_WRITE_MULTIENTITYRESULTS(&group, RUN, NODE, &nent, DISPLACEMENT, &ncoo, BLANK, &no_zone, BLANK, &fswitch,
 *                                   &dmpswitch, &nindex, &step, &time[step], entid, &fidglob, NULL, NULL, NULL,
 *                                   values[step], &none, &state, &plain, params, &value_size, &status);
 *  }
 *  @endcode
 *  @{ */

/** Writes states of a series of entity results: tables of nent rows and ncoo columns, as many as there are states.
 *
 *  The first call for a block writes its attributes and identifiers, later ones write their states and nstate alone.
 *  Placed with the names series, "multientityresults", etyp, etypvar, etypzone, the zone number and the set number
 *  under "multistate".
 *
 *  Row 0 is written with s = 1. s = 0 makes an empty block, or leaves an existing one as it is.
 *  @param[in]  group         int64 [1], group from KOB_OPEN()
 *  @param[in]  series        text256 [1], name of the series of states, leads the path
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  nent          int32 [1], number of entities
 *  @param[in]  etypvar       text256 [1], name of the variable
 *  @param[in]  ncoo          int32 [1], number of components
 *  @param[in]  etypzone      text256 [1], zone name; blank: none
 *  @param[in]  zoneid        int32 [1], zone number; negative: none
 *  @param[in]  etypframe     text256 [1], name of the frame of the components
 *  @param[in]  fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each entity, fid
 *  @param[in]  dmpswitch     int32 [1], 1: operator and weight are written; any other: they are not
 *  @param[in]  nindex        int32 [1], number of index values of a state
 *  @param[in]  indexident    int32 [states, nindex], index identifiers of each state written
 *  @param[in]  indexval      real [states, nindex], index values of each state written
 *  @param[in]  entid         int32 [nent], entity identifiers
 *  @param[in]  fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[in]  fid           int32 [nent], frame identifiers; fswitch 1 only
 *  @param[in]  operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[in]  weight        real [nent], combination weight of each entity; dmpswitch 1 only
 *  @param[in]  res           real [states, nent, ncoo(, 2)], values; complex with value_size 16 and 32
 *  @param[in]  set           int32 [1], set number of the path; negative: none
 *  @param[in]  state         int32 [1], s >= 0: the arrays hold s states, written to rows 0 to s - 1; s < 0: they hold
 *                            one state, written to row -s
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the floating-point data, bit 128 reaches res alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  value_size    int32 [1], see @ref value_size; plus 1024: indexval, weight and res are 4-byte numbers in
 *                            memory
 *  @param[out] status        int32 [1], 0 written; -1 the group cannot be closed; -8, -10 the group cannot be created,
 *                            opened; -123 fswitch is neither 0 nor 1; otherwise see @ref storage_codes */
KOB_API void KOB_WRITE_MULTIENTITYRESULTS(const int64_t* group, const char* series, const char* etyp,
                                          const int32_t* nent, const char* etypvar, const int32_t* ncoo,
                                          const char* etypzone, const int32_t* zoneid, const char* etypframe,
                                          const int32_t* fswitch, const int32_t* dmpswitch, const int32_t* nindex,
                                          const int32_t* indexident, const void* indexval, const int32_t* entid,
                                          const int32_t* fidglob, const int32_t* fid, const char* operator_,
                                          const void* weight, const void* res, const int32_t* set, const int32_t* state,
                                          const int32_t* filter_flags, const int32_t* filter_params,
                                          const int32_t* value_size, int32_t* status);

/** Writes pieces of states of a series of entity results: KOB_WRITE_MULTIENTITYRESULTS() with a selection.
 *
 *  With a negative state and mode 1 or 2 the selection says what is written, and the state number itself is not used;
 *  else mode, count and start are ignored. rank is 3, of complex values 4; state rows count from the first state of the
 *  block. Index rows that go with the values:
 *
 *  | Mode | Rows written                     | indexident, indexval                    |
 *  |------|----------------------------------|-----------------------------------------|
 *  | 1    | start[0] to start[0]+count[0]-1  | `[count[0], nindex]`                    |
 *  | 2    | 0 to the largest row of a point  | `[largest row + 1, nindex]`             |
 *  @param[in]  group         int64 [1], group from KOB_OPEN()
 *  @param[in]  series        text256 [1], name of the series of states, leads the path
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  nent          int32 [1], number of entities
 *  @param[in]  etypvar       text256 [1], name of the variable
 *  @param[in]  ncoo          int32 [1], number of components
 *  @param[in]  etypzone      text256 [1], zone name; blank: none
 *  @param[in]  zoneid        int32 [1], zone number; negative: none
 *  @param[in]  etypframe     text256 [1], name of the frame of the components
 *  @param[in]  fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each entity, fid
 *  @param[in]  dmpswitch     int32 [1], 1: operator and weight are written; any other: they are not
 *  @param[in]  nindex        int32 [1], number of index values of a state
 *  @param[in]  indexident    int32 [states, nindex], index identifiers of each state written
 *  @param[in]  indexval      real [states, nindex], index values of each state written
 *  @param[in]  entid         int32 [nent], entity identifiers
 *  @param[in]  fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[in]  fid           int32 [nent], frame identifiers; fswitch 1 only
 *  @param[in]  operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[in]  weight        real [nent], combination weight of each entity; dmpswitch 1 only
 *  @param[in]  res           real [states, nent, ncoo(, 2)], values; with a selection [count], or [number of points]
 *  @param[in]  set           int32 [1], set number of the path; negative: none
 *  @param[in]  state         int32 [1], see KOB_WRITE_MULTIENTITYRESULTS(); negative with mode 1 or 2: the selection
 *                            counts
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the floating-point data, bit 128 reaches res alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  value_size    int32 [1], see @ref value_size; plus 1024: indexval, weight and res are 4-byte numbers in
 *                            memory
 *  @param[in]  mode          int32 [1], 0: whole states; 1: a block of values; 2: single values
 *  @param[in]  count         int64 [rank], mode 1: extents of the block of values; mode 2: [1], number of points
 *  @param[in]  start         int64 [rank], mode 1: first state row, first entity, first component; mode 2: [points,
 *                            rank], coordinates
 *  @param[out] status        int32 [1], 0 written; -1 the group cannot be closed; -8, -10 the group cannot be created,
 *                            opened; -123 fswitch is neither 0 nor 1; -999 unknown mode; otherwise see @ref
 *                            storage_codes */
KOB_API void KOB_WRITE_MULTIENTITYRESULTC(const int64_t* group, const char* series, const char* etyp,
                                          const int32_t* nent, const char* etypvar, const int32_t* ncoo,
                                          const char* etypzone, const int32_t* zoneid, const char* etypframe,
                                          const int32_t* fswitch, const int32_t* dmpswitch, const int32_t* nindex,
                                          const int32_t* indexident, const void* indexval, const int32_t* entid,
                                          const int32_t* fidglob, const int32_t* fid, const char* operator_,
                                          const void* weight, const void* res, const int32_t* set, const int32_t* state,
                                          const int32_t* filter_flags, const int32_t* filter_params,
                                          const int32_t* value_size, const int32_t* mode, const int64_t* count,
                                          const int64_t* start, int32_t* status);

/** Writes states, or pieces of states, of a series of entity results into a group that the caller opened.
 *
 *  The group stays open. A block without "entid" counts as new and gets its attributes and identifiers first.
 *  @param[in]  groups        int64 [2], group of the block, from KOB_OPENAUTOPATH(); the second one is not read
 *  @param[in]  unused2       unused [1], not read
 *  @param[in]  unused3       unused [1], not read
 *  @param[in]  series        text256 [1], name of the series of states
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  nent          int32 [1], number of entities
 *  @param[in]  etypvar       text256 [1], name of the variable
 *  @param[in]  ncoo          int32 [1], number of components
 *  @param[in]  etypzone      text256 [1], zone name; blank: none
 *  @param[in]  zoneid        int32 [1], zone number; negative: none
 *  @param[in]  etypframe     text256 [1], name of the frame of the components
 *  @param[in]  fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each entity, fid
 *  @param[in]  dmpswitch     int32 [1], 1: operator and weight are written; any other: they are not
 *  @param[in]  nindex        int32 [1], number of index values of a state
 *  @param[in]  indexident    int32 [states, nindex], index identifiers of each state written, see
 *                            KOB_WRITE_MULTIENTITYRESULTC()
 *  @param[in]  indexval      real [states, nindex], index values of each state written
 *  @param[in]  entid         int32 [nent], entity identifiers
 *  @param[in]  fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[in]  fid           int32 [nent], frame identifiers; fswitch 1 only
 *  @param[in]  operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[in]  weight        real [nent], combination weight of each entity; dmpswitch 1 only
 *  @param[in]  res           real [states, nent, ncoo(, 2)], values; with mode 1 [count], with mode 2 [number of
 *                            points]
 *  @param[in]  memory_size   int32 [1], size of the numbers in indexval, weight and res: 4 or 8
 *  @param[in]  state         int32 [1], mode 0: number of states, written to rows 0 to state - 1; else not used
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the floating-point data, bit 128 reaches res alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  value_size    int32 [1], see @ref value_size
 *  @param[in]  mode          int32 [1], 0: whole states; 1: a block of values; 2: single values
 *  @param[in]  count         int64 [rank], mode 1: extents of the block of values; mode 2: [1], number of points
 *  @param[in]  start         int64 [rank], mode 1: first state row, first entity, first component; mode 2: [points,
 *                            rank], coordinates
 *  @param[out] nstate        int32 [1], number of state rows that the block holds now
 *  @param[out] status        int32 [1], 0 written; a negative handle; -123 fswitch is neither 0 nor 1; -999 unknown
 *                            mode, or mode 0 with a negative state; otherwise see @ref storage_codes */
KOB_API void KOB_WRITE_MULTIENTITYRESULTS2(
    const int64_t* groups, const void* unused2, const void* unused3, const char* series, const char* etyp,
    const int32_t* nent, const char* etypvar, const int32_t* ncoo, const char* etypzone, const int32_t* zoneid,
    const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch, const int32_t* nindex,
    const int32_t* indexident, const void* indexval, const int32_t* entid, const int32_t* fidglob, const int32_t* fid,
    const char* operator_, const void* weight, const void* res, const int32_t* memory_size, const int32_t* state,
    const int32_t* filter_flags, const int32_t* filter_params, const int32_t* value_size, const int32_t* mode,
    const int64_t* count, const int64_t* start, int32_t* nstate, int32_t* status);

/** Reads a series of entity results with all its states, in passes.
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 0: attributes and state index; 1: attributes; 2: everything
 *  @param[out] series        text256 [1], name of the series of states
 *  @param[out] etyp          text256 [1], entity type name
 *  @param[out] nent          int32 [1], number of entities
 *  @param[out] etypvar       text256 [1], name of the variable
 *  @param[out] ncoo          int32 [1], number of components
 *  @param[out] etypzone      text256 [1], zone name
 *  @param[out] zoneid        int32 [1], zone number
 *  @param[out] etypframe     text256 [1], name of the frame of the components
 *  @param[out] fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each entity, fid
 *  @param[out] dmpswitch     int32 [1], 1: the block holds operator and weight
 *  @param[out] nindex        int32 [1], number of index values of a state
 *  @param[out] nstate        int32 [1], number of state rows
 *  @param[out] indexident    int32 [nstate, nindex], index identifiers of each state; pass 0 and 2
 *  @param[out] indexval      double [nstate, nindex], index values of each state; pass 0 and 2
 *  @param[out] entid         int32 [nent], entity identifiers; pass 2, like all below
 *  @param[out] fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[out] fid           int32 [nent], frame identifiers; fswitch 1 only
 *  @param[out] operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[out] weight        double [nent], combination weight of each entity; dmpswitch 1 only
 *  @param[out] res           double [nstate, nent, ncoo(, 2)], values; complex if the status is 1051
 *  @param[out] filter_flags  int32 [1], filters of "res", see @ref filters
 *  @param[out] filter_params int32 [2], their parameters
 *  @param[out] status        int32 [1], 1050 read, real; 1051 read, complex; -1 invalid handle or not a block of
 *                            multi-state entity results; -3 another pass; -123 fswitch is neither 0 nor 1; otherwise
 *                            see @ref storage_codes */
KOB_API void KOB_READ_MULTIENTITYRESULTS(const int64_t* block, const int32_t* pass, char* series, char* etyp,
                                         int32_t* nent, char* etypvar, int32_t* ncoo, char* etypzone, int32_t* zoneid,
                                         char* etypframe, int32_t* fswitch, int32_t* dmpswitch, int32_t* nindex,
                                         int32_t* nstate, int32_t* indexident, double* indexval, int32_t* entid,
                                         int32_t* fidglob, int32_t* fid, char* operator_, double* weight, double* res,
                                         int32_t* filter_flags, int32_t* filter_params, int32_t* status);

/** Reads a series of entity results, whole or by state or in pieces, in passes.
 *
 *  1024 added to the pass means that indexval, weight and res are 4-byte numbers in memory. In the passes 3, 4 and 5
 *  the counts and switches are inputs:
 *
 *  | Pass | Read                                                                               |
 *  |------|------------------------------------------------------------------------------------|
 *  | 0    | attributes and the index rows of all states                                        |
 *  | 1    | attributes                                                                         |
 *  | 2    | everything                                                                         |
 *  | 3    | res: with mode 0 the state row that nstate says, else the selection                |
 *  | 4    | the same, and the index rows of it: with mode 0 one, with mode 1 count[0], with    |
 *  |      | mode 2 one for each point                                                          |
 *  | 5    | entid to weight                                                                    |
 *
 *  rank is 3, of complex values 4.
 *  @param[in]     block         int64 [1], group of the block
 *  @param[in]     pass          int32 [1], 0 to 5, plus 1024 for 4-byte numbers
 *  @param[out]    series        text256 [1], name of the series of states
 *  @param[out]    etyp          text256 [1], entity type name
 *  @param[in,out] nent          int32 [1], number of entities
 *  @param[out]    etypvar       text256 [1], name of the variable
 *  @param[in,out] ncoo          int32 [1], number of components
 *  @param[out]    etypzone      text256 [1], zone name
 *  @param[out]    zoneid        int32 [1], zone number
 *  @param[out]    etypframe     text256 [1], name of the frame of the components
 *  @param[in,out] fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each entity, fid
 *  @param[in,out] dmpswitch     int32 [1], 1: the block holds operator and weight
 *  @param[in,out] nindex        int32 [1], number of index values of a state
 *  @param[in,out] nstate        int32 [1], number of state rows; pass 3 and 4: the state row to read, from 0
 *  @param[out]    indexident    int32 [nstate, nindex], index identifiers of each state; pass 0, 2 and 4
 *  @param[out]    indexval      real [nstate, nindex], index values of each state; pass 0, 2 and 4
 *  @param[out]    entid         int32 [nent], entity identifiers; pass 2 and 5, like those down to weight
 *  @param[out]    fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[out]    fid           int32 [nent], frame identifiers; fswitch 1 only
 *  @param[out]    operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[out]    weight        real [nent], combination weight of each entity; dmpswitch 1 only
 *  @param[out]    res           real [nstate, nent, ncoo(, 2)], values; pass 3 and 4: [nent, ncoo(, 2)], [count] or
 *                               [number of points]
 *  @param[out]    filter_flags  int32 [1], filters of "res", see @ref filters; pass 2, 3 and 4
 *  @param[out]    filter_params int32 [2], their parameters
 *  @param[in]     mode          int32 [1], 0: a whole state; 1: a block of values; 2: single values; read in pass 3 and
 *                               4 only
 *  @param[in]     count         int64 [rank], mode 1: extents of the block of values; mode 2: [1], number of points
 *  @param[in]     start         int64 [rank], mode 1: first state row, first entity, first component; mode 2: [points,
 *                               rank], coordinates
 *  @param[out]    status        int32 [1], 1050 read, real; 1051 read, complex; -1 invalid handle or not a block of
 *                               multi-state entity results; -3 another pass; -123 fswitch is neither 0 nor 1; -999
 *                               unknown mode; otherwise see @ref storage_codes */
KOB_API void KOB_READ_MULTIENTITYRESULTC(const int64_t* block, const int32_t* pass, char* series, char* etyp,
                                         int32_t* nent, char* etypvar, int32_t* ncoo, char* etypzone, int32_t* zoneid,
                                         char* etypframe, int32_t* fswitch, int32_t* dmpswitch, int32_t* nindex,
                                         int32_t* nstate, int32_t* indexident, void* indexval, int32_t* entid,
                                         int32_t* fidglob, int32_t* fid, char* operator_, void* weight, void* res,
                                         int32_t* filter_flags, int32_t* filter_params, const int32_t* mode,
                                         const int64_t* count, const int64_t* start, int32_t* status);

/** Reads sections of a series of entity results, all states or pieces.
 *
 *  Without section bit 1 the counts and switches are inputs. rank is 3, of complex values 4. With mode 1 and 2 section
 *  bit 2 reads the index rows that KOB_READ_MULTIENTITYRESULTC() reads in pass 4.
 *  @param[in]     block         int64 [1], group of the block
 *  @param[in]     sections      int32 [1], section bits 1, 2, 4, 8, see @ref sections
 *  @param[in]     unused3       unused [1], not read
 *  @param[out]    series        text256 [1], name of the series of states
 *  @param[out]    etyp          text256 [1], entity type name
 *  @param[in,out] nent          int32 [1], number of entities
 *  @param[out]    etypvar       text256 [1], name of the variable
 *  @param[in,out] ncoo          int32 [1], number of components
 *  @param[out]    etypzone      text256 [1], zone name
 *  @param[out]    zoneid        int32 [1], zone number
 *  @param[out]    etypframe     text256 [1], name of the frame of the components
 *  @param[in,out] fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each entity, fid
 *  @param[in,out] dmpswitch     int32 [1], 1: the block holds operator and weight
 *  @param[in,out] nindex        int32 [1], number of index values of a state
 *  @param[in,out] nstate        int32 [1], number of state rows
 *  @param[out]    indexident    int32 [nstate, nindex], index identifiers of each state
 *  @param[out]    indexval      real [nstate, nindex], index values of each state
 *  @param[out]    entid         int32 [nent], entity identifiers
 *  @param[out]    fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[out]    fid           int32 [nent], frame identifiers; fswitch 1 only
 *  @param[out]    operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[out]    weight        real [nent], combination weight of each entity; dmpswitch 1 only
 *  @param[out]    res           real [nstate, nent, ncoo(, 2)], values; with mode 1 [count], with mode 2 [number of
 *                               points]
 *  @param[in]     memory_size   int32 [1], size of the numbers in indexval, weight and res: 4 or 8
 *  @param[out]    filter_flags  int32 [1], filters of "res", see @ref filters; section bit 8 only
 *  @param[out]    filter_params int32 [2], their parameters
 *  @param[in]     mode          int32 [1], 0: all states; 1: a block of values; 2: single values
 *  @param[in]     count         int64 [rank], mode 1: extents of the block of values; mode 2: [1], number of points
 *  @param[in]     start         int64 [rank], mode 1: first state row, first entity, first component; mode 2: [points,
 *                               rank], coordinates
 *  @param[out]    status        int32 [1], 1050 read, real; 1051 read, complex; -1 invalid handle or not a block of
 *                               multi-state entity results; -123 fswitch is neither 0 nor 1; -999 unknown mode;
 *                               otherwise see @ref storage_codes */
KOB_API void KOB_READ_MULTIENTITYRESULTS2(const int64_t* block, const int32_t* sections, const void* unused3,
                                          char* series, char* etyp, int32_t* nent, char* etypvar, int32_t* ncoo,
                                          char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch,
                                          int32_t* dmpswitch, int32_t* nindex, int32_t* nstate, int32_t* indexident,
                                          void* indexval, int32_t* entid, int32_t* fidglob, int32_t* fid,
                                          char* operator_, void* weight, void* res, const int32_t* memory_size,
                                          int32_t* filter_flags, int32_t* filter_params, const int32_t* mode,
                                          const int64_t* count, const int64_t* start, int32_t* status);

/** Writes the first states of a series of element results.
 *
 *  The first call for a block writes its attributes and identifiers, later ones write their states and nstate alone. n
 *  = 0 makes an empty block, or leaves an existing one as it is. Placed with the names series, "multielementresults",
 *  etypelem, etypvar, etypzone, the zone number and the set number under "multistate". Leaves the group of the block
 *  open.
 *  @param[in]  group         int64 [1], group from KOB_OPEN()
 *  @param[in]  series        text256 [1], name of the series of states, leads the path
 *  @param[in]  etypelem      text256 [1], element type name
 *  @param[in]  nele          int32 [1], number of elements
 *  @param[in]  etypvar       text256 [1], name of the variable
 *  @param[in]  ncoo          int32 [1], number of components
 *  @param[in]  numl          int32 [1], number of locations in each element
 *  @param[in]  ndim          int32 [1], number of coordinates of a location
 *  @param[in]  etypzone      text256 [1], zone name; blank: none
 *  @param[in]  zoneid        int32 [1], zone number; negative: none
 *  @param[in]  etypframe     text256 [1], name of the frame of the components
 *  @param[in]  fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each element, fid; 2: a frame
 *                            for each element and location, fid
 *  @param[in]  dmpswitch     int32 [1], 1: operator and weight are written; any other: they are not
 *  @param[in]  nindex        int32 [1], number of index values of a state
 *  @param[in]  indexident    int32 [n, nindex], index identifiers of each state
 *  @param[in]  indexval      double [n, nindex], index values of each state
 *  @param[in]  idele         int32 [nele], element identifiers
 *  @param[in]  fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[in]  fid           int32 [nele] or [nele, numl], frame identifiers; fswitch 1 or 2 only
 *  @param[in]  eloc          double [numl, ndim], coordinates of the locations
 *  @param[in]  operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[in]  weight        double [nele], combination weight of each element; dmpswitch 1 only
 *  @param[in]  res           double [n, nele, numl, ncoo(, 2)], values; complex with value_size 16 and 32
 *  @param[in]  set           int32 [1], set number of the path; negative: none
 *  @param[in]  n             int32 [1], number of states, written to rows 0 to n - 1
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the doubles, bit 128 reaches res alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  value_size    int32 [1], see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -8, -10 the group cannot be created, opened; -123 fswitch is neither
 *                            0, 1 nor 2; -999 n is negative; otherwise see @ref storage_codes */
KOB_API void KOB_WRITE_MULTIELEMENTRESULTS(const int64_t* group, const char* series, const char* etypelem,
                                           const int32_t* nele, const char* etypvar, const int32_t* ncoo,
                                           const int32_t* numl, const int32_t* ndim, const char* etypzone,
                                           const int32_t* zoneid, const char* etypframe, const int32_t* fswitch,
                                           const int32_t* dmpswitch, const int32_t* nindex, const int32_t* indexident,
                                           const double* indexval, const int32_t* idele, const int32_t* fidglob,
                                           const int32_t* fid, const double* eloc, const char* operator_,
                                           const double* weight, const double* res, const int32_t* set,
                                           const int32_t* n, const int32_t* filter_flags, const int32_t* filter_params,
                                           const int32_t* value_size, int32_t* status);

/** Reads a series of element results with all its states, in passes.
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 0: attributes and state index; 1: attributes; 2: everything
 *  @param[out] series        text256 [1], name of the series of states
 *  @param[out] etypelem      text256 [1], element type name
 *  @param[out] nele          int32 [1], number of elements
 *  @param[out] etypvar       text256 [1], name of the variable
 *  @param[out] ncoo          int32 [1], number of components
 *  @param[out] numl          int32 [1], number of locations in each element
 *  @param[out] ndim          int32 [1], number of coordinates of a location
 *  @param[out] etypzone      text256 [1], zone name
 *  @param[out] zoneid        int32 [1], zone number
 *  @param[out] etypframe     text256 [1], name of the frame of the components
 *  @param[out] fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each element, fid; 2: a frame
 *                            for each element and location, fid
 *  @param[out] dmpswitch     int32 [1], 1: the block holds operator and weight
 *  @param[out] nindex        int32 [1], number of index values of a state
 *  @param[out] nstate        int32 [1], number of state rows
 *  @param[out] indexident    int32 [nstate, nindex], index identifiers of each state; pass 0 and 2
 *  @param[out] indexval      double [nstate, nindex], index values of each state; pass 0 and 2
 *  @param[out] idele         int32 [nele], element identifiers; pass 2, like all below
 *  @param[out] fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[out] fid           int32 [nele] or [nele, numl], frame identifiers; fswitch 1 or 2 only
 *  @param[out] eloc          double [numl, ndim], coordinates of the locations
 *  @param[out] operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[out] weight        double [nele], combination weight of each element; dmpswitch 1 only
 *  @param[out] res           double [nstate, nele, numl, ncoo(, 2)], values; complex if the status is 1151
 *  @param[out] filter_flags  int32 [1], filters of "res", see @ref filters
 *  @param[out] filter_params int32 [2], their parameters
 *  @param[out] status        int32 [1], 1150 read, real; 1151 read, complex; -1 invalid handle or not a block of
 *                            multi-state element results; -3 another pass (nothing is read); -123 fswitch is neither 0,
 *                            1 nor 2; otherwise see @ref storage_codes */
KOB_API void KOB_READ_MULTIELEMENTRESULTS(const int64_t* block, const int32_t* pass, char* series, char* etypelem,
                                          int32_t* nele, char* etypvar, int32_t* ncoo, int32_t* numl, int32_t* ndim,
                                          char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch,
                                          int32_t* dmpswitch, int32_t* nindex, int32_t* nstate, int32_t* indexident,
                                          double* indexval, int32_t* idele, int32_t* fidglob, int32_t* fid,
                                          double* eloc, char* operator_, double* weight, double* res,
                                          int32_t* filter_flags, int32_t* filter_params, int32_t* status);

/** Writes the first states of a series of activation flags.
 *
 *  The first call for a block writes its attributes and identifiers, later ones write their states and nstate alone. n
 *  = 0 makes an empty block, or leaves an existing one as it is. Placed with the names series, "multiactivflags" and
 *  etyp under "multistate". Leaves the group of the block open.
 *  @param[in]  group         int64 [1], group from KOB_OPEN()
 *  @param[in]  series        text256 [1], name of the series of states, leads the path
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  nent          int32 [1], number of entities
 *  @param[in]  nindex        int32 [1], number of index values of a state
 *  @param[in]  indexident    int32 [n, nindex], index identifiers of each state
 *  @param[in]  indexval      double [n, nindex], index values of each state
 *  @param[in]  entid         int32 [nent], entity identifiers
 *  @param[in]  flags         int32 [n, nent], activation flag of each entity in each state
 *  @param[in]  n             int32 [1], number of states, written to rows 0 to n - 1
 *  @param[in]  filter_flags  int32 [1], see @ref filters; bit 128 has no effect here
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  float_size    int32 [1], stored size of the doubles, see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -8, -10 the group cannot be created, opened; -999 n is negative;
 *                            otherwise see @ref storage_codes */
KOB_API void KOB_WRITE_MULTIACTIVFLAGS(const int64_t* group, const char* series, const char* etyp, const int32_t* nent,
                                       const int32_t* nindex, const int32_t* indexident, const double* indexval,
                                       const int32_t* entid, const int32_t* flags, const int32_t* n,
                                       const int32_t* filter_flags, const int32_t* filter_params,
                                       const int32_t* float_size, int32_t* status);

/** Reads a series of activation flags with all its states, in passes.
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 0: attributes and state index; 1: attributes; 2: everything
 *  @param[out] series        text256 [1], name of the series of states
 *  @param[out] etyp          text256 [1], entity type name
 *  @param[out] nent          int32 [1], number of entities
 *  @param[out] nindex        int32 [1], number of index values of a state
 *  @param[out] nstate        int32 [1], number of state rows
 *  @param[out] indexident    int32 [nstate, nindex], index identifiers of each state; pass 0 and 2
 *  @param[out] indexval      double [nstate, nindex], index values of each state; pass 0 and 2
 *  @param[out] entid         int32 [nent], entity identifiers; pass 2, like all below
 *  @param[out] flags         int32 [nstate, nent], activation flag of each entity in each state
 *  @param[out] filter_flags  int32 [1], filters of "status", where the flags are stored, see @ref filters
 *  @param[out] filter_params int32 [2], their parameters
 *  @param[out] status        int32 [1], 0 read; -1 invalid handle or not a block of multi-state activation flags; -3
 *                            another pass (the attributes are filled in then); otherwise see @ref storage_codes */
KOB_API void KOB_READ_MULTIACTIVFLAGS(const int64_t* block, const int32_t* pass, char* series, char* etyp,
                                      int32_t* nent, int32_t* nindex, int32_t* nstate, int32_t* indexident,
                                      double* indexval, int32_t* entid, int32_t* flags, int32_t* filter_flags,
                                      int32_t* filter_params, int32_t* status);

/** @} */

/** @defgroup matrices Matrices
 *
 *  A matrix block holds one matrix of one entity. The first call for a block writes its attributes and state index,
 *  later ones write values alone: give a selection to write a large matrix in pieces. The writers close the group of
 *  the block. Values never written hold the fill value (10000 under scale-offset, else 0).
 *  @code{.c}
 *  // ELEMENT, STIFFNESS: text256, padded with blanks
 *  int32_t entid = 17, nrow = 2, ncolumn = 2, nindex = 0, indexic = 0, none = -1, plain = 0, params[] = {0, 0}, status;
 *  int32_t value_size = 8, whole = 0;
 *  double val[] = {2.0, -1.0, -1.0, 2.0};
 *  KOB_WRITE_DENSEMATRIX(&group, ELEMENT, &entid, STIFFNESS, &nrow, &ncolumn, &nindex, &indexic, NULL, NULL, val,
 *                        &none, &plain, params, &value_size, &whole, NULL, NULL, &status, 256, 256);
 *  @endcode
 *  @{ */

/** Writes a full matrix of one entity, the whole of it or pieces.
 *
 *  Placed with the names "densematrix", etyp, etypvar and "id" with entid behind it, constant or in a state. In pieces
 *  rank is 2, of complex values 3.
 *  @param[in]  group         int64 [1], group from KOB_OPEN()
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  entid         int32 [1], entity identifier
 *  @param[in]  etypvar       text256 [1], name of the matrix variable
 *  @param[in]  nrow          int32 [1], number of rows
 *  @param[in]  ncolumn       int32 [1], number of columns
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexic       int32 [1], code of the index kind, stored as given
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  val           double [nrow, ncolumn(, 2)], values; with mode 1 [count], with mode 2 [number of points]
 *  @param[in]  state         int32 [1], state number of the path; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the doubles, bit 128 reaches val alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  value_size    int32 [1], see @ref value_size
 *  @param[in]  mode          int32 [1], 0: all values; 1: a block of them; 2: single values
 *  @param[in]  count         int64 [rank], mode 1: extents of the block; mode 2: [1], number of points
 *  @param[in]  start         int64 [rank], mode 1: first indices; mode 2: [points, rank], coordinates
 *  @param[out] status        int32 [1], 0 written; -8, -10 the group cannot be created, opened; -999 unknown mode
 *                            (attributes and index of a new block are written); otherwise see @ref storage_codes
 *  @param[in]  unused20      int32 by value, ignored
 *  @param[in]  unused21      int32 by value, ignored */
KOB_API void KOB_WRITE_DENSEMATRIX(const int64_t* group, const char* etyp, const int32_t* entid, const char* etypvar,
                                   const int32_t* nrow, const int32_t* ncolumn, const int32_t* nindex,
                                   const int32_t* indexic, const int32_t* indexident, const double* indexval,
                                   const double* val, const int32_t* state, const int32_t* filter_flags,
                                   const int32_t* filter_params, const int32_t* value_size, const int32_t* mode,
                                   const int64_t* count, const int64_t* start, int32_t* status, int32_t unused20,
                                   int32_t unused21);

/** Reads a dense matrix, whole or in pieces, in passes.
 *
 *  In pieces rank is 2, of complex values 3.
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 0: attributes and state index; 1: attributes; 2: everything; 3: a block of the
 *                            values; 4: single values
 *  @param[out] etyp          text256 [1], entity type name
 *  @param[out] entid         int32 [1], entity identifier
 *  @param[out] etypvar       text256 [1], name of the matrix variable
 *  @param[out] nrow          int32 [1], number of rows
 *  @param[out] ncolumn       int32 [1], number of columns
 *  @param[out] nindex        int32 [1], number of index values; 0: constant
 *  @param[out] indexic       int32 [1], code of the index kind
 *  @param[out] indexident    int32 [nindex], index identifiers of the state; pass 0 and 2
 *  @param[out] indexval      double [nindex], index values of the state; pass 0 and 2
 *  @param[out] val           double [nrow, ncolumn(, 2)], values; complex if the status is 10001; pass 3 [count], pass
 *                            4 [number of points]
 *  @param[out] filter_flags  int32 [1], filters of "val", see @ref filters; pass 2, 3 and 4
 *  @param[out] filter_params int32 [2], their parameters
 *  @param[in]  count         int64 [rank], pass 3: extents of the block; pass 4: [1], number of points
 *  @param[in]  start         int64 [rank], pass 3: first indices; pass 4: [points, rank], coordinates
 *  @param[out] status        int32 [1], 10000 read, real; 10001 read, complex; -1 invalid handle or not a dense matrix
 *                            block; -3 another pass (nothing is read); otherwise see @ref storage_codes
 *  @param[in]  unused18      int32 by value, ignored
 *  @param[in]  unused19      int32 by value, ignored */
KOB_API void KOB_READ_DENSEMATRIX(const int64_t* block, const int32_t* pass, char* etyp, int32_t* entid, char* etypvar,
                                  int32_t* nrow, int32_t* ncolumn, int32_t* nindex, int32_t* indexic,
                                  int32_t* indexident, double* indexval, double* val, int32_t* filter_flags,
                                  int32_t* filter_params, const int64_t* count, const int64_t* start, int32_t* status,
                                  int32_t unused18, int32_t unused19);

/** Writes one triangle of a square matrix of one entity, the whole of it or pieces.
 *
 *  Placed with the names "triangularmatrix", etyp, etypvar and "id" with entid behind it, constant or in a state. Which
 *  triangle it is, and in which order, is the callers' affair. npacked stands for nsize * (nsize + 1) / 2, computed in
 *  32 bits without sign: orders of 65536 and more wrap around. In pieces rank is 1, of complex values 2.
 *  @param[in]  group         int64 [1], group from KOB_OPEN()
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  entid         int32 [1], entity identifier
 *  @param[in]  etypvar       text256 [1], name of the matrix variable
 *  @param[in]  nsize         int32 [1], order of the matrix
 *  @param[in]  matrixtype    int32 [1], code of the kind of matrix, stored as given
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexic       int32 [1], code of the index kind, stored as given
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  val           double [npacked(, 2)], values; with mode 1 [count], with mode 2 [number of points]
 *  @param[in]  state         int32 [1], state number of the path; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the doubles, bit 128 reaches val alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  value_size    int32 [1], see @ref value_size
 *  @param[in]  mode          int32 [1], 0: all values; 1: a block of them; 2: single values
 *  @param[in]  count         int64 [rank], mode 1: extents of the block; mode 2: [1], number of points
 *  @param[in]  start         int64 [rank], mode 1: first indices; mode 2: [points, rank], coordinates
 *  @param[out] status        int32 [1], 0 written; -8, -10 the group cannot be created, opened; -999 unknown mode
 *                            (attributes and index of a new block are written); otherwise see @ref storage_codes
 *  @param[in]  unused20      int32 by value, ignored
 *  @param[in]  unused21      int32 by value, ignored */
KOB_API void KOB_WRITE_TRIANGULARMATRIX(const int64_t* group, const char* etyp, const int32_t* entid,
                                        const char* etypvar, const int32_t* nsize, const int32_t* matrixtype,
                                        const int32_t* nindex, const int32_t* indexic, const int32_t* indexident,
                                        const double* indexval, const double* val, const int32_t* state,
                                        const int32_t* filter_flags, const int32_t* filter_params,
                                        const int32_t* value_size, const int32_t* mode, const int64_t* count,
                                        const int64_t* start, int32_t* status, int32_t unused20, int32_t unused21);

/** Reads a triangular matrix, whole or in pieces, in passes.
 *
 *  In pieces rank is 1, of complex values 2.
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 0: attributes and state index; 1: attributes; 2: everything; 3: a block of the
 *                            values; 4: single values
 *  @param[out] etyp          text256 [1], entity type name
 *  @param[out] entid         int32 [1], entity identifier
 *  @param[out] etypvar       text256 [1], name of the matrix variable
 *  @param[out] nsize         int32 [1], order of the matrix
 *  @param[out] matrixtype    int32 [1], code of the kind of matrix
 *  @param[out] nindex        int32 [1], number of index values; 0: constant
 *  @param[out] indexic       int32 [1], code of the index kind
 *  @param[out] indexident    int32 [nindex], index identifiers of the state; pass 0 and 2
 *  @param[out] indexval      double [nindex], index values of the state; pass 0 and 2
 *  @param[out] val           double [npacked(, 2)], values; complex if the status is 10101; pass 3 [count], pass 4
 *                            [number of points]
 *  @param[out] filter_flags  int32 [1], filters of "val", see @ref filters; pass 2, 3 and 4
 *  @param[out] filter_params int32 [2], their parameters
 *  @param[in]  count         int64 [rank], pass 3: extents of the block; pass 4: [1], number of points
 *  @param[in]  start         int64 [rank], pass 3: first indices; pass 4: [points, rank], coordinates
 *  @param[out] status        int32 [1], 10100 read, real; 10101 read, complex; -1 invalid handle or not a triangular
 *                            matrix block; -3 another pass (nothing is read); otherwise see @ref storage_codes
 *  @param[in]  unused18      int32 by value, ignored
 *  @param[in]  unused19      int32 by value, ignored */
KOB_API void KOB_READ_TRIANGULARMATRIX(const int64_t* block, const int32_t* pass, char* etyp, int32_t* entid,
                                       char* etypvar, int32_t* nsize, int32_t* matrixtype, int32_t* nindex,
                                       int32_t* indexic, int32_t* indexident, double* indexval, double* val,
                                       int32_t* filter_flags, int32_t* filter_params, const int64_t* count,
                                       const int64_t* start, int32_t* status, int32_t unused18, int32_t unused19);

/** Writes a matrix of one entity by its stored entries, row after row; the values whole or in pieces.
 *
 *  Placed with the names "sparsematrix", etyp, etypvar and "id" with entid behind it, constant or in a state. colind
 *  and rowptr are stored as given, counted from 0 or from 1 as the callers agree, and by the first call for a block
 *  alone. In pieces rank is 1, of complex values 2.
 *  @param[in]  group         int64 [1], group from KOB_OPEN()
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  entid         int32 [1], entity identifier
 *  @param[in]  etypvar       text256 [1], name of the matrix variable
 *  @param[in]  nrow          int32 [1], number of rows
 *  @param[in]  nnz           int64 [1], number of stored entries
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexic       int32 [1], code of the index kind, stored as given
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  colind        int32 [nnz], column of each entry
 *  @param[in]  rowptr        int64 [nrow + 1], where each row starts in colind and val, and the end
 *  @param[in]  val           double [nnz(, 2)], values; with mode 1 [count], with mode 2 [number of points]
 *  @param[in]  state         int32 [1], state number of the path; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the doubles, bit 128 reaches val alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  value_size    int32 [1], see @ref value_size
 *  @param[in]  mode          int32 [1], 0: all values; 1: a block of them; 2: single values
 *  @param[in]  count         int64 [rank], mode 1: extents of the block; mode 2: [1], number of points
 *  @param[in]  start         int64 [rank], mode 1: first indices; mode 2: [points, rank], coordinates
 *  @param[out] status        int32 [1], 0 written; -8, -10 the group cannot be created, opened; -999 unknown mode
 *                            (attributes and index of a new block are written); otherwise see @ref storage_codes
 *  @param[in]  unused22      int32 by value, ignored
 *  @param[in]  unused23      int32 by value, ignored */
KOB_API void KOB_WRITE_SPARSEMATRIX(const int64_t* group, const char* etyp, const int32_t* entid, const char* etypvar,
                                    const int32_t* nrow, const int64_t* nnz, const int32_t* nindex,
                                    const int32_t* indexic, const int32_t* indexident, const double* indexval,
                                    const int32_t* colind, const int64_t* rowptr, const double* val,
                                    const int32_t* state, const int32_t* filter_flags, const int32_t* filter_params,
                                    const int32_t* value_size, const int32_t* mode, const int64_t* count,
                                    const int64_t* start, int32_t* status, int32_t unused22, int32_t unused23);

/** Reads a sparse matrix, whole or in pieces, in passes.
 *
 *  In pieces rank is 1, of complex values 2. The passes 3 and 4 read colind and rowptr, too, whole and with the extents
 *  that the caller gives.
 *  @param[in]     block         int64 [1], group of the block
 *  @param[in]     pass          int32 [1], 0: attributes and state index; 1: attributes; 2: everything; 3: a block of
 *                               the values; 4: single values
 *  @param[out]    etyp          text256 [1], entity type name
 *  @param[out]    entid         int32 [1], entity identifier
 *  @param[out]    etypvar       text256 [1], name of the matrix variable
 *  @param[in,out] nrow          int32 [1], number of rows; input in pass 3 and 4
 *  @param[in,out] nnz           int64 [1], number of stored entries; input in pass 3 and 4
 *  @param[out]    nindex        int32 [1], number of index values; 0: constant
 *  @param[out]    indexic       int32 [1], code of the index kind
 *  @param[out]    indexident    int32 [nindex], index identifiers of the state; pass 0 and 2
 *  @param[out]    indexval      double [nindex], index values of the state; pass 0 and 2
 *  @param[out]    colind        int32 [nnz], column of each entry; pass 2, 3 and 4
 *  @param[out]    rowptr        int64 [nrow + 1], where each row starts in colind and val, and the end; pass 2, 3 and 4
 *  @param[out]    val           double [nnz(, 2)], values; complex if the status is 10201; pass 3 [count], pass 4
 *                               [number of points]
 *  @param[out]    filter_flags  int32 [1], filters of "val", see @ref filters; pass 2, 3 and 4
 *  @param[out]    filter_params int32 [2], their parameters
 *  @param[in]     count         int64 [rank], pass 3: extents of the block; pass 4: [1], number of points
 *  @param[in]     start         int64 [rank], pass 3: first indices; pass 4: [points, rank], coordinates
 *  @param[out]    status        int32 [1], 10200 read, real; 10201 read, complex; -1 invalid handle or not a sparse
 *                               matrix block; -3 another pass (nothing is read); otherwise see @ref storage_codes
 *  @param[in]     unused20      int32 by value, ignored
 *  @param[in]     unused21      int32 by value, ignored */
KOB_API void KOB_READ_SPARSEMATRIX(const int64_t* block, const int32_t* pass, char* etyp, int32_t* entid, char* etypvar,
                                   int32_t* nrow, int64_t* nnz, int32_t* nindex, int32_t* indexic, int32_t* indexident,
                                   double* indexval, int32_t* colind, int64_t* rowptr, double* val,
                                   int32_t* filter_flags, int32_t* filter_params, const int64_t* count,
                                   const int64_t* start, int32_t* status, int32_t unused20, int32_t unused21);

/** @} */

/** @defgroup tools Whole-file tools
 *  Cut a file back, link files together, merge the files of a distributed run.
 *  @{ */

/** Erases every result that belongs to a state after the given index.
 *
 *  Blocks of one state after the index are deleted, and so are the groups that they leave empty. Multi-state entity
 *  results are cut back to their leading states; other multi-state blocks are left alone. States are compared by their
 *  index identifiers, the last one first: it is the most significant. A block with another number of index values is
 *  kept, and so is one that cannot be read. A rewritten block keeps its path. A block that two names reach is handled
 *  once; blocks behind an external link are kept, with one warning line. The space in the file is not given back. Once
 *  a deletion fails, in a damaged file, nothing else is deleted or rewritten: one line names each block that is kept.
 *
 *  The system block gets the local date and time as "mdate" and "mtime". Running out of memory ends the process with
 *  exit code 1, as in every tool.
 *  @param[in]  group   int64 [1], group of the open file
 *  @param[in]  nindex  int32 [1], number of index values
 *  @param[in]  index   int32 [nindex], identifiers of the last state to keep
 *  @param[in]  verbose int32 [1], 1: banner and information lines; 2: also the block table and every deletion
 *  @param[out] status  int32 [1], 0 done, or the file has no header or another major version (nothing is changed);
 *                      -1 no blocks; -1000 a series without values; otherwise see @ref storage_codes and
 *                      KOB_READ_INDEX(), KOB_READ_MULTIENTITYRESULTS(), KOB_WRITE_MULTIENTITYRESULTS2() */
KOB_API void KOB_ERASE_STATES(const int64_t* group, const int32_t* nindex, const int32_t* index, const int32_t* verbose,
                              int32_t* status);

/** Links the contents of several groups, of any files, into one group.
 *
 *  Each link directly in a source group, but for "post", becomes an external link of the same name in the target. Where
 *  a name is taken already the link is left out, with an error line; the first source wins.
 *  @param[in]  sources int64 [n], groups whose contents are shown
 *  @param[in]  target  int64 [1], group that shows them
 *  @param[in]  n       int32 [1], number of source groups
 *  @param[in]  name    char [256], group below the target for the links, made if missing; ends at a NUL, blanks at the
 *                      end do not count; used with option 1
 *  @param[in]  options int32 [1], bit 1: put the links into the group name
 *  @param[in]  verbose int32 [1], above 0: one line for each link
 *  @param[out] status  int32 [1], 0 done, even when single links failed; with option 1 what KOB_H5GOPEN() gives: the
 *                      number of groups created, or its error */
KOB_API void KOB_CREATE_EXTLINKS(const int64_t* sources, const int64_t* target, const int32_t* n, const char* name,
                                 const int32_t* options, const int32_t* verbose, int32_t* status);

/** Merges the files of a distributed run, one for each domain, into one file.
 *
 *  Every path of the domain files is found again in the target, filled as its kind asks for:
 *
 *  - system: copied from the first file that holds it;
 *  - index, variable groups, variables, text: each path copied from the first file that holds it;
 *  - connectivities, activation flags, parts, attributes, identifiers, entity results, multi-state entity results: one
 *    block for each path, with the rows of all domains, by ascending identifier; of an entity that several domains
 *    hold, the first domain's row;
 *  - collectors: united by collector and member type, members ascending, each once;
 *  - element results: written block by block; where the place is taken, under the first free set number from 1;
 *  - dense and triangular matrices: the first domain's; an equal one is skipped, a different one left out with a
 *    warning;
 *  - properties, multi-state element results, multi-state activation flags, sparse matrices: not merged; listed with a
 *    verbose level.
 *
 *  Blocks of one path that cannot be united (another number of components, real against complex) stop the merge; a
 *  block without entities fits any other. A text or column that one domain lacks is blank or 0 in its rows. What rows
 *  do not tell (names, frame identifier, operators) is the first domain's that has entities.
 *
 *  States of multi-state blocks are united by their index identifiers, in order of first appearance. Where an entity's
 *  domain lacks a state the values are NaN, unless another domain holds them; a warning counts them, and the block is
 *  not stored with scale-offset. At most 1 GiB of states is held in memory at a time; of all other kinds one merged
 *  block.
 *
 *  Values keep their stored size (of different ones the larger) and their filters (the first domain's that has any,
 *  else filter_flags). The exponent table sets scale-offset for the entity results of a variable, constant ones and
 *  those of single states; series keep their filters. NODE/COORDINATE is stored with scale-offset only if the table
 *  names it; shared nodes whose coordinates differ are counted in a warning.
 *
 *  With several domains the constant result DMPComputeDomainNumber tells for each element and node of the
 *  connectivities the file, from 1, of the first domain that holds it. The target's file header is the caller's affair.
 *  A domain file of another version or without a header prints a warning and is merged all the same. Running out of
 *  memory ends the process with exit code 1.
 *  @param[in]  domains        int64 [n], groups of the open domain files, in the order of the domains
 *  @param[in]  target         int64 [1], group of the open target file
 *  @param[in]  n              int32 [1], number of domain files
 *  @param[in]  filter_flags   int32 [1], filters of blocks that have none in the domain files, see @ref filters
 *  @param[in]  filter_params  int32 [2], their parameters
 *  @param[in]  nexp           int32 [1], entries of the exponent table, see KOB_READ_PARAM()
 *  @param[in]  exponent_names text256 [nexp], variable names, in any order; of equal names the first counts
 *  @param[in]  exponents      int32 [nexp], decimal scale factors
 *  @param[in]  options        int64 [1], sum of 1: verbose; 2: more verbose; 4: no domain numbers
 *  @param[in]  float_size     int32 [1], stored size of doubles in model blocks, see @ref value_size
 *  @param[out] status         int32 [1], 0 merged; 1 states with more than 5 index values; -1 blocks that cannot be
 *                             united, or one that exists in the target; otherwise the status of the first reader,
 *                             writer or listing that failed, and the target holds what was written until then */
KOB_API void KOB_MERGE_DMP(const int64_t* domains, const int64_t* target, const int32_t* n, const int32_t* filter_flags,
                           const int32_t* filter_params, const int32_t* nexp, const char* exponent_names,
                           const int32_t* exponents, const int64_t* options, const int32_t* float_size,
                           int32_t* status);

/** Reads a parameter file: a variable name and its exponent for scale-offset compression on each line.
 *
 *  "$" and "#" begin a comment. A line that does not begin with a word and an integer is skipped. At most 299
 *  characters are read at a time; what follows in a longer line counts as a line of its own. Call with pass 0, make
 *  room, call with pass 1. A name of more than 256 characters runs into the next field, the last one is cut; entries
 *  beyond count are not stored.
 *  @param[in]     path        char [], file name, NUL-terminated
 *  @param[in]     path_length int32 by value, ignored
 *  @param[in]     pass        int32 [1], 0: count the entries; 1: read them; others do nothing
 *  @param[in,out] count       int32 [1], pass 0: number of entries; pass 1: fields of names, then entries stored
 *  @param[out]    names       text256 [count], variable names; pass 1
 *  @param[out]    exponents   int32 [count], decimal scale factors; pass 1
 *  @param[in]     verbose     int32 [1], above 0: print the table
 *  @param[out]    status      int32 [1], 0 read; -1 no such file, or not readable */
KOB_API void KOB_READ_PARAM(const char* path, int32_t path_length, const int32_t* pass, int32_t* count, char* names,
                            int32_t* exponents, const int32_t* verbose, int32_t* status);

/** @} */

/** @defgroup older The older layout
 *  Files of version 1: the same blocks at the same paths, but each block's group is divided into "header" (frame and
 *  scalar items), "data" (datasets) and "index" (the state index). No block holds "indexic".
 *
 *  Writers and readers are those of the current layout less indexic, unless their arguments say otherwise. Readers take
 *  a pass: 1 attributes, 2 everything; matrices also 3 and 4, the C reader 3 to 5; any other is status -3. The "2"
 *  readers take section bits, as their twins do. Further statuses of readers: -1 when "header", or a "data" or "index"
 *  that is needed, is missing. A reader of one layout refuses the blocks of the other.
 *
 *  The number of states of a series is the extent of its values; the attribute "nstate" is written, and not believed.
 *  @{ */

/** Opens or creates a block group by its path, as KOB_OPENAUTOPATH() does: the paths of both layouts are the same.
 *  @param[in]  parent  int64 [1], group from KOB1_OPEN()
 *  @param[in]  mask    int32 [1], sum of 1, 2, 4, 8, 16: which of the five names go into the path
 *  @param[in]  unused3 unused [1], not read
 *  @param[in]  ioflag  int32 [1], 0: create what is missing; 1: open only; 2: open only, and check every level
 *  @param[in]  nstate  int32 [1], number of states n: 0 constant, -1 multi-state, else single-state
 *  @param[in]  states  int32 [nstate], state numbers, used if nstate is positive and state negative
 *  @param[in]  state   int32 [1], state number, used if nstate is positive; negative: take states
 *  @param[in]  name1   text256 [1], first name; read only if the mask has its bit, like the others
 *  @param[in]  name2   text256 [1], second name
 *  @param[in]  name3   text256 [1], third name
 *  @param[in]  name4   text256 [1], fourth name
 *  @param[in]  name5   text256 [1], fifth name
 *  @param[in]  number  int32 [1], number behind the names; negative: none
 *  @param[in]  set     int32 [1], set number; negative: none
 *  @param[out] block   int64 [1], the group of the block; -1 if the status is negative
 *  @param[out] status  int32 [1], as KOB_H5GOPEN(): 0 the block was there; positive: it is new, number of groups
 *                      created; -1 missing (ioflag 1 and 2); -8 a level cannot be created; -10, -20 cannot be opened;
 *                      -30 unknown ioflag */
KOB_API void KOB1_OPENAUTOPATH(const int64_t* parent, const int32_t* mask, const void* unused3, const int32_t* ioflag,
                               const int32_t* nstate, const int32_t* states, const int32_t* state, const char* name1,
                               const char* name2, const char* name3, const char* name4, const char* name5,
                               const int32_t* number, const int32_t* set, int64_t* block, int32_t* status);

/** Closes a file with everything that is open in it: KOB_CLOSE() under the name of the older layout.
 *  @param[in]  handle int64 [1], any object of the file
 *  @param[out] status int32 [1], 0 closed; -1 something could not be closed, or the handle is none */
KOB_API void KOB1_CLOSE(const int64_t* handle, int32_t* status);

/** Tells the versions of the libraries, as KOB_GET_VERSION() does; the format version is KOB-1.2.0.
 *  @param[out] text     text256 [1], the text, padded with blanks, without NUL
 *  @param[in]  selector int32 [1], 1: the build identifier; 2: "HDF5-1.14.6"; 4: "KOB-1.2.0"; 6: "HDF5-1.14.6
 *                       KOB-1.2.0"; any other: "kob__dp HDF5-1.14.6 KOB-1.2.0" (with the running HDF5 version)
 *  @param[in]  verbose  int32 [1], positive: also print the versions on standard output
 *  @param[out] status   int32 [1], 0; -998 HDF5 older than 1.14.6; -999 its version is unknown. text is set with 0 */
KOB_API void KOB1_GET_VERSION(char* text, const int32_t* selector, const int32_t* verbose, int32_t* status);

/** Lists all blocks of the older layout below a group, as kob_lookup() lists those of the current one.
 *
 *  Blocks of the current layout are left out. The three arrays come from malloc() and are handled as there.
 *  @param[in]     group       int64 [1], group from which to start
 *  @param[in]     store       int32 [1], 1: fill the arrays; below 1: count only, and capacity, path_size and the three
 *                             pointers are set to 0 and null, without freeing what was handed in
 *  @param[in]     verbose     int32 [1], not 0: print the listing on standard output, if the arrays are filled
 *  @param[in,out] capacity    int32 [1], entries that the arrays can hold; below 1: allocate keys and offsets (10,000)
 *  @param[in,out] path_size   int64 [1], bytes of paths; below 1: allocate paths (2,560,000)
 *  @param[out]    count       int32 [1], number of blocks found
 *  @param[out]    path_length int64 [1], bytes that all paths take, their NULs included
 *  @param[in,out] keys        int32* [1], array [capacity] of block keys, see @ref block_keys
 *  @param[in,out] offsets     int64* [1], array [capacity + 1] of positions in paths
 *  @param[in,out] paths       char* [1], array [path_size] of characters, the paths one behind the other
 *  @param[out]    status      int32 [1], 0 complete; -1 an array is missing (null, or not enough memory); 1 not enough
 *                             memory during the walk, the arrays hold what was found until then; otherwise negative:
 *                             HDF5 failed, or the limits are exceeded */
KOB_API void kob1_lookup(const int64_t* group, const int32_t* store, const int32_t* verbose, int32_t* capacity,
                         int64_t* path_size, int32_t* count, int64_t* path_length, int32_t** keys, int64_t** offsets,
                         char** paths, int32_t* status);

/** Finds blocks of the older layout by their contents, as KOB_SEARCHBLOCKS() finds those of the current one.
 *
 *  A variables block (key 30) is tested by etypvar. Text blocks belong to no state: they count as constant. A block of
 *  the current layout has no key here: it is found while no key is asked for, unless a criterion of its contents is
 *  set.
 *  @param[in]  group           int64 [1], group from KOB1_OPEN()
 *  @param[in]  option          int32 [1], below 1: count only, no array is written; 1: fill the arrays; bit value 2:
 *                              fill the arrays and typenames
 *  @param[in]  verbose         int32 [1], not 0: print the listing on standard output, if the arrays are filled
 *  @param[in]  key             int32 [1], block key; below 1: any
 *  @param[in]  etyp            text256 [1], entity type name
 *  @param[in]  etypvar         text256 [1], variable (group) name
 *  @param[in]  etypzone        text256 [1], zone name
 *  @param[in]  zoneid          int32 [1], zone number; negative: any
 *  @param[in]  etypframe       text256 [1], frame name
 *  @param[in]  series          text256 [1], series name
 *  @param[in]  matrixtype      int32 [1], matrix type; negative: any
 *  @param[in]  entid           int32 [1], identifier that the block must contain; negative: any
 *  @param[in]  name2           text256 [1], variable key, element type or property type
 *  @param[in]  unused14        unused [1], not read
 *  @param[in]  nindex          int32 [1], number of index ranges; 0: constant blocks; negative: any state
 *  @param[in]  indexident_low  int32 [nindex], smallest index identifiers
 *  @param[in]  indexval_low    double [nindex], smallest index values
 *  @param[in]  indexident_high int32 [nindex], largest index identifiers
 *  @param[in]  indexval_high   double [nindex], largest index values
 *  @param[in]  capacity        int32 [1], matches that the arrays can hold
 *  @param[in]  path_size       int64 [1], bytes of paths
 *  @param[out] count           int32 [1], number of matches
 *  @param[out] path_length     int64 [1], bytes that their paths take, NULs included
 *  @param[out] keys            int32 [capacity], block keys
 *  @param[out] offsets         int64 [capacity + 1], path i starts at paths + offsets[i], offsets[0] is 0
 *  @param[out] paths           char [path_size], the paths one behind the other, each ends with a NUL
 *  @param[out] typenames       text256 [capacity], block type names as stored ("n/a" if unreadable); bit value 2 only
 *  @param[out] status          int32 [1], 0 complete; 1 the arrays are full, count and path_length tell what they hold;
 *                              negative: HDF5 failed, or the limits of kob_lookup() are exceeded */
KOB_API void KOB1_SEARCHBLOCKS(const int64_t* group, const int32_t* option, const int32_t* verbose, const int32_t* key,
                               const char* etyp, const char* etypvar, const char* etypzone, const int32_t* zoneid,
                               const char* etypframe, const char* series, const int32_t* matrixtype,
                               const int32_t* entid, const char* name2, const void* unused14, const int32_t* nindex,
                               const int32_t* indexident_low, const double* indexval_low,
                               const int32_t* indexident_high, const double* indexval_high, const int32_t* capacity,
                               const int64_t* path_size, int32_t* count, int64_t* path_length, int32_t* keys,
                               int64_t* offsets, char* paths, char* typenames, int32_t* status);

/** Writes the system block of the older layout, as KOB_WRITE_SYSTEM() writes the current one.
 *
 *  nfactor is the sum of ndbunit.
 *  @param[in]  group         int64 [1], group from KOB1_OPEN()
 *  @param[in]  title         text256 [1], title of the results
 *  @param[in]  sys           text256 [1], name of the producing system
 *  @param[in]  solver_name   text256 [1], solver name
 *  @param[in]  solver_vers   text256 [1], solver version
 *  @param[in]  cdate         text8 [1], date of creation, stored as it is
 *  @param[in]  ctime         text8 [1], time of creation
 *  @param[in]  mdate         text8 [1], date of modification
 *  @param[in]  mtime         text8 [1], time of modification
 *  @param[in]  nbunit        int32 [1], number of base units
 *  @param[in]  ndunit        int32 [1], number of derived units
 *  @param[in]  ubid          int32 [nbunit], identifiers of the base units
 *  @param[in]  ubtyp         text256 [nbunit], kinds of quantity
 *  @param[in]  ubnam         text256 [nbunit], names
 *  @param[in]  ubshift       double [nbunit], shifts
 *  @param[in]  ubcon         double [nbunit], conversion factors
 *  @param[in]  udid          int32 [ndunit], identifiers of the derived units
 *  @param[in]  udnam         text256 [ndunit], names
 *  @param[in]  udscal        double [ndunit], scale factors
 *  @param[in]  ndbunit       int32 [ndunit], number of base-unit factors of each derived unit
 *  @param[in]  udbid         int32 [nfactor], base-unit identifiers of the factors
 *  @param[in]  udbexp        double [nfactor], exponents of the factors
 *  @param[in]  filter_flags  int32 [1], see @ref filters; bit 128 has no effect here
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  float_size    int32 [1], stored size of the doubles, see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -1 exists already; -8, -10 the group cannot be created, opened;
 *                            otherwise see @ref storage_codes */
KOB_API void KOB1_WRITE_SYSTEM(const int64_t* group, const char* title, const char* sys, const char* solver_name,
                               const char* solver_vers, const char* cdate, const char* ctime, const char* mdate,
                               const char* mtime, const int32_t* nbunit, const int32_t* ndunit, const int32_t* ubid,
                               const char* ubtyp, const char* ubnam, const double* ubshift, const double* ubcon,
                               const int32_t* udid, const char* udnam, const double* udscal, const int32_t* ndbunit,
                               const int32_t* udbid, const double* udbexp, const int32_t* filter_flags,
                               const int32_t* filter_params, const int32_t* float_size, int32_t* status);

/** Reads the system block of the older layout.
 *
 *  The length of udbid and udbexp, nfactor, is the sum of ndbunit, which only pass 2 reads: provide enough room, or ask
 *  HDF5 for the extent of "data/udbid".
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 1: the scalar items; 2: everything
 *  @param[out] title         text256 [1], title of the results
 *  @param[out] sys           text256 [1], name of the producing system
 *  @param[out] solver_name   text256 [1], solver name
 *  @param[out] solver_vers   text256 [1], solver version
 *  @param[out] cdate         text8 [1], date of creation
 *  @param[out] ctime         text8 [1], time of creation
 *  @param[out] mdate         text8 [1], date of modification
 *  @param[out] mtime         text8 [1], time of modification
 *  @param[out] nbunit        int32 [1], number of base units
 *  @param[out] ndunit        int32 [1], number of derived units
 *  @param[out] ubid          int32 [nbunit], identifiers of the base units
 *  @param[out] ubtyp         text256 [nbunit], kinds of quantity
 *  @param[out] ubnam         text256 [nbunit], names
 *  @param[out] ubshift       double [nbunit], shifts
 *  @param[out] ubcon         double [nbunit], conversion factors
 *  @param[out] udid          int32 [ndunit], identifiers of the derived units
 *  @param[out] udnam         text256 [ndunit], names
 *  @param[out] udscal        double [ndunit], scale factors
 *  @param[out] ndbunit       int32 [ndunit], number of base-unit factors of each derived unit
 *  @param[out] udbid         int32 [nfactor], base-unit identifiers of the factors
 *  @param[out] udbexp        double [nfactor], exponents of the factors
 *  @param[out] filter_flags  int32 [1], filters of "udbexp", see @ref filters; 0 if that is empty
 *  @param[out] filter_params int32 [2], their parameters
 *  @param[out] status        int32 [1], 0 read; -1 invalid handle, not a system block of this layout, or a part of it
 *                            is missing; -3 another pass (the scalar items are filled in then); otherwise see @ref
 *                            storage_codes */
KOB_API void KOB1_READ_SYSTEM(const int64_t* block, const int32_t* pass, char* title, char* sys, char* solver_name,
                              char* solver_vers, char* cdate, char* ctime, char* mdate, char* mtime, int32_t* nbunit,
                              int32_t* ndunit, int32_t* ubid, char* ubtyp, char* ubnam, double* ubshift, double* ubcon,
                              int32_t* udid, char* udnam, double* udscal, int32_t* ndbunit, int32_t* udbid,
                              double* udbexp, int32_t* filter_flags, int32_t* filter_params, int32_t* status);

/** Writes the index block of the older layout: how the states of the results are identified, with names and units.
 *
 *  Placed with the name "indices", constant; one per group. lenb is the sum of mbunit, lend that of mdunit.
 *  @param[in]  group         int64 [1], group from KOB1_OPEN()
 *  @param[in]  nindex        int32 [1], number of index values of a state
 *  @param[in]  etypindex     text256 [nindex], name of each index value
 *  @param[in]  mbunit        int32 [nindex], number of base-unit factors of each index value, see KOB_WRITE_VARIABLE()
 *  @param[in]  mdunit        int32 [nindex], number of derived-unit factors of each index value
 *  @param[in]  ubid          int32 [lenb], base-unit identifiers of the factors
 *  @param[in]  ubexp         double [lenb], their exponents
 *  @param[in]  udid          int32 [lend], derived-unit identifiers of the factors
 *  @param[in]  udexp         double [lend], their exponents
 *  @param[in]  filter_flags  int32 [1], see @ref filters; bit 128 has no effect here
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  float_size    int32 [1], stored size of the doubles, see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -1 exists already; -8, -10 the group cannot be created, opened;
 *                            otherwise see @ref storage_codes */
KOB_API void KOB1_WRITE_INDEX(const int64_t* group, const int32_t* nindex, const char* etypindex, const int32_t* mbunit,
                              const int32_t* mdunit, const int32_t* ubid, const double* ubexp, const int32_t* udid,
                              const double* udexp, const int32_t* filter_flags, const int32_t* filter_params,
                              const int32_t* float_size, int32_t* status);

/** Reads the index block of the older layout.
 *
 *  lenb is the sum of mbunit, lend that of mdunit, which only pass 2 reads: provide enough room, or ask HDF5 for the
 *  extents of "data/ubid" and "data/udid".
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 1: the scalar items; 2: everything
 *  @param[out] nindex        int32 [1], number of index values of a state
 *  @param[out] etypindex     text256 [nindex], name of each index value; pass 2, like all below
 *  @param[out] mbunit        int32 [nindex], number of base-unit factors of each index value
 *  @param[out] mdunit        int32 [nindex], number of derived-unit factors of each index value
 *  @param[out] ubid          int32 [lenb], base-unit identifiers of the factors
 *  @param[out] ubexp         double [lenb], their exponents
 *  @param[out] udid          int32 [lend], derived-unit identifiers of the factors
 *  @param[out] udexp         double [lend], their exponents
 *  @param[out] filter_flags  int32 [1], filters of the last dataset read, see @ref filters; pass 2 only
 *  @param[out] filter_params int32 [2], their parameters; pass 2 only
 *  @param[out] status        int32 [1], 0 read; -1 invalid handle, not an index block of this layout, or a part of it
 *                            is missing; -3 another pass (the scalar items are filled in then); otherwise see @ref
 *                            storage_codes */
KOB_API void KOB1_READ_INDEX(const int64_t* block, const int32_t* pass, int32_t* nindex, char* etypindex,
                             int32_t* mbunit, int32_t* mdunit, int32_t* ubid, double* ubexp, int32_t* udid,
                             double* udexp, int32_t* filter_flags, int32_t* filter_params, int32_t* status);

/** Writes a variables block, which has the place of variable and variable group blocks in the older layout.
 *
 *  Placed with the names "variables" and etypvar, constant; one block per variable. With rank extents of ndim each,
 *  comp says which component each place of the tensor is; for rank 0 it is a single number. lenb is the sum of mbunit,
 *  lend that of mdunit.
 *  @param[in]  group         int64 [1], group from KOB1_OPEN()
 *  @param[in]  etypvar       text256 [1], name of the variable
 *  @param[in]  idtrans       int32 [1], identifier of its transformation, stored as given
 *  @param[in]  rank          int32 [1], tensor rank
 *  @param[in]  ndim          int32 [1], dimension of the tensor
 *  @param[in]  ncoo          int32 [1], number of components
 *  @param[in]  mbunit        int32 [ncoo], number of base-unit factors of each component, see KOB_WRITE_VARIABLE()
 *  @param[in]  mdunit        int32 [ncoo], number of derived-unit factors of each component
 *  @param[in]  ubid          int32 [lenb], base-unit identifiers of the factors
 *  @param[in]  ubexp         double [lenb], their exponents
 *  @param[in]  udid          int32 [lend], derived-unit identifiers of the factors
 *  @param[in]  udexp         double [lend], their exponents
 *  @param[in]  cname         text256 [ncoo], name of each component
 *  @param[in]  cid           int32 [ncoo], identifier of each component
 *  @param[in]  comp          int32 [ndim, ..., ndim], rank extents; [1] for rank 0
 *  @param[in]  filter_flags  int32 [1], see @ref filters; bit 128 has no effect here
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  float_size    int32 [1], stored size of the doubles, see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -1 exists already; -8, -10 the group cannot be created, opened;
 *                            otherwise see @ref storage_codes */
KOB_API void KOB1_WRITE_VARIABLES(const int64_t* group, const char* etypvar, const int32_t* idtrans,
                                  const int32_t* rank, const int32_t* ndim, const int32_t* ncoo, const int32_t* mbunit,
                                  const int32_t* mdunit, const int32_t* ubid, const double* ubexp, const int32_t* udid,
                                  const double* udexp, const char* cname, const int32_t* cid, const int32_t* comp,
                                  const int32_t* filter_flags, const int32_t* filter_params, const int32_t* float_size,
                                  int32_t* status);

/** Reads a variables block of the older layout.
 *
 *  lenb is the sum of mbunit, lend that of mdunit, which only pass 2 reads: provide enough room, or ask HDF5 for the
 *  extents of "data/ubid" and "data/udid".
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 1: the scalar items; 2: everything
 *  @param[out] etypvar       text256 [1], name of the variable
 *  @param[out] idtrans       int32 [1], identifier of its transformation
 *  @param[out] rank          int32 [1], tensor rank
 *  @param[out] ndim          int32 [1], dimension of the tensor
 *  @param[out] ncoo          int32 [1], number of components
 *  @param[out] mbunit        int32 [ncoo], number of base-unit factors of each component; pass 2, like all below
 *  @param[out] mdunit        int32 [ncoo], number of derived-unit factors of each component
 *  @param[out] ubid          int32 [lenb], base-unit identifiers of the factors
 *  @param[out] ubexp         double [lenb], their exponents
 *  @param[out] udid          int32 [lend], derived-unit identifiers of the factors
 *  @param[out] udexp         double [lend], their exponents
 *  @param[out] cname         text256 [ncoo], name of each component
 *  @param[out] cid           int32 [ncoo], identifier of each component
 *  @param[out] comp          int32 [ndim, ..., ndim], rank extents; [1] for rank 0
 *  @param[out] filter_flags  int32 [1], filters of the last dataset read, see @ref filters; pass 2 only
 *  @param[out] filter_params int32 [2], their parameters; pass 2 only
 *  @param[out] status        int32 [1], 0 read; -1 invalid handle, not a variables block of this layout, or a part of
 *                            it is missing; -3 another pass (the scalar items are filled in then); otherwise see @ref
 *                            storage_codes */
KOB_API void KOB1_READ_VARIABLES(const int64_t* block, const int32_t* pass, char* etypvar, int32_t* idtrans,
                                 int32_t* rank, int32_t* ndim, int32_t* ncoo, int32_t* mbunit, int32_t* mdunit,
                                 int32_t* ubid, double* ubexp, int32_t* udid, double* udexp, char* cname, int32_t* cid,
                                 int32_t* comp, int32_t* filter_flags, int32_t* filter_params, int32_t* status);

/** Writes lines of free text in the older layout, where they belong to no state.
 *
 *  Placed with the names "text" and etyptext, constant; one block per kind of text.
 *  @param[in]  group         int64 [1], group from KOB1_OPEN()
 *  @param[in]  etyptext      text256 [1], name of the text kind
 *  @param[in]  nlines        int32 [1], number of lines
 *  @param[in]  length        int32 [1], characters of each line
 *  @param[in]  line          char [nlines, length], the lines, one behind the other
 *  @param[in]  filter_flags  int32 [1], see @ref filters; bit 128 has no effect here
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[out] status        int32 [1], 0 written; -1 exists already; -8, -10 the group cannot be created, opened;
 *                            otherwise see @ref storage_codes (-3001: length is below 1) */
KOB_API void KOB1_WRITE_TEXT(const int64_t* group, const char* etyptext, const int32_t* nlines, const int32_t* length,
                             const char* line, const int32_t* filter_flags, const int32_t* filter_params,
                             int32_t* status);

/** Reads a text block of the older layout.
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 1: the scalar items; 2: everything
 *  @param[out] etyptext      text256 [1], name of the text kind
 *  @param[out] nlines        int32 [1], number of lines
 *  @param[out] length        int32 [1], characters of each line
 *  @param[out] line          char [nlines, length], the lines, one behind the other; pass 2
 *  @param[out] filter_flags  int32 [1], filters of "line", see @ref filters; pass 2 only
 *  @param[out] filter_params int32 [2], their parameters; pass 2 only
 *  @param[out] status        int32 [1], 0 read; -1 invalid handle, not a text block of this layout, or a part of it is
 *                            missing; -3 another pass (the scalar items are filled in then); otherwise see @ref
 *                            storage_codes (-6010: length is less than the stored one) */
KOB_API void KOB1_READ_TEXT(const int64_t* block, const int32_t* pass, char* etyptext, int32_t* nlines, int32_t* length,
                            char* line, int32_t* filter_flags, int32_t* filter_params, int32_t* status);

/** Writes the parts of one part type in the older layout, as KOB_WRITE_PARTS() writes them in the current one.
 *
 *  Titles have 256 characters and are always written; each part has a further code, pvtyp.
 *  @param[in]  group         int64 [1], group from KOB1_OPEN()
 *  @param[in]  etyppart      text256 [1], part type name
 *  @param[in]  npart         int32 [1], number of parts
 *  @param[in]  off           int32 [1], sum of 1: no mid; 2: no mtyp; 4: no pcol
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  pid           int32 [npart], part identifiers
 *  @param[in]  title         text256 [npart], titles
 *  @param[in]  mid           int32 [npart], material identifier of each part; unless off has 1
 *  @param[in]  mtyp          int32 [npart], material type of each part; unless off has 2
 *  @param[in]  pcol          int32 [npart], colour number of each part; unless off has 4
 *  @param[in]  pvtyp         int32 [npart], further type code of each part, stored as given
 *  @param[in]  state         int32 [1], state number of the path; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; bit 128 has no effect here
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  float_size    int32 [1], stored size of the doubles, see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -1 exists already; -8, -10 the group cannot be created, opened;
 *                            otherwise see @ref storage_codes */
KOB_API void KOB1_WRITE_PARTS(const int64_t* group, const char* etyppart, const int32_t* npart, const int32_t* off,
                              const int32_t* nindex, const int32_t* indexident, const double* indexval,
                              const int32_t* pid, const char* title, const int32_t* mid, const int32_t* mtyp,
                              const int32_t* pcol, const int32_t* pvtyp, const int32_t* state,
                              const int32_t* filter_flags, const int32_t* filter_params, const int32_t* float_size,
                              int32_t* status);

/** Reads the parts of one part type of the older layout.
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 1: the scalar items; 2: everything
 *  @param[out] etyppart      text256 [1], part type name
 *  @param[out] npart         int32 [1], number of parts
 *  @param[out] off           int32 [1], sum of 1: no mid; 2: no mtyp; 4: no pcol
 *  @param[out] nindex        int32 [1], number of index values; 0: constant
 *  @param[out] indexident    int32 [nindex], index identifiers of the state; pass 2, like all below
 *  @param[out] indexval      double [nindex], index values of the state
 *  @param[out] pid           int32 [npart], part identifiers
 *  @param[out] title         text256 [npart], titles
 *  @param[out] mid           int32 [npart], material identifier of each part; unless off has 1
 *  @param[out] mtyp          int32 [npart], material type of each part; unless off has 2
 *  @param[out] pcol          int32 [npart], colour number of each part; unless off has 4
 *  @param[out] pvtyp         int32 [npart], further type code of each part
 *  @param[out] filter_flags  int32 [1], filters of the last dataset read, see @ref filters; pass 2 only
 *  @param[out] filter_params int32 [2], their parameters; pass 2 only
 *  @param[out] status        int32 [1], 0 read; -1 invalid handle, not a parts block of this layout, or a part of it is
 *                            missing; -3 another pass (the scalar items are filled in then); otherwise see @ref
 *                            storage_codes (-6002: off asks for an array that is not there) */
KOB_API void KOB1_READ_PARTS(const int64_t* block, const int32_t* pass, char* etyppart, int32_t* npart, int32_t* off,
                             int32_t* nindex, int32_t* indexident, double* indexval, int32_t* pid, char* title,
                             int32_t* mid, int32_t* mtyp, int32_t* pcol, int32_t* pvtyp, int32_t* filter_flags,
                             int32_t* filter_params, int32_t* status);

/** Writes titles and further identifiers of the entities of one type in the older layout, as KOB_WRITE_ATTRIBUTES()
 *  writes them in the current one.
 *
 *  Titles have 256 characters and are always written.
 *  @param[in]  group         int64 [1], group from KOB1_OPEN()
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  nent          int32 [1], number of entities
 *  @param[in]  nuid          int32 [1], number of further identifiers of each entity
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  entid         int32 [nent], entity identifiers
 *  @param[in]  title         text256 [nent], titles
 *  @param[in]  uid           int32 [nent, nuid], further identifiers; only if nuid is positive
 *  @param[in]  state         int32 [1], state number of the path; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; bit 128 has no effect here
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  float_size    int32 [1], stored size of the doubles, see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -1 exists already; -8, -10 the group cannot be created, opened;
 *                            otherwise see @ref storage_codes */
KOB_API void KOB1_WRITE_ATTRIBUTES(const int64_t* group, const char* etyp, const int32_t* nent, const int32_t* nuid,
                                   const int32_t* nindex, const int32_t* indexident, const double* indexval,
                                   const int32_t* entid, const char* title, const int32_t* uid, const int32_t* state,
                                   const int32_t* filter_flags, const int32_t* filter_params, const int32_t* float_size,
                                   int32_t* status);

/** Reads the attributes of the entities of one type of the older layout.
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 1: the scalar items; 2: everything
 *  @param[out] etyp          text256 [1], entity type name
 *  @param[out] nent          int32 [1], number of entities
 *  @param[out] nuid          int32 [1], number of further identifiers of each entity
 *  @param[out] nindex        int32 [1], number of index values; 0: constant
 *  @param[out] indexident    int32 [nindex], index identifiers of the state; pass 2, like all below
 *  @param[out] indexval      double [nindex], index values of the state
 *  @param[out] entid         int32 [nent], entity identifiers
 *  @param[out] title         text256 [nent], titles
 *  @param[out] uid           int32 [nent, nuid], further identifiers; only if nuid is positive
 *  @param[out] filter_flags  int32 [1], filters of the last dataset read, see @ref filters; pass 2 only
 *  @param[out] filter_params int32 [2], their parameters; pass 2 only
 *  @param[out] status        int32 [1], 0 read; -1 invalid handle, not an attributes block of this layout, or a part of
 *                            it is missing; -3 another pass (the scalar items are filled in then); otherwise see @ref
 *                            storage_codes */
KOB_API void KOB1_READ_ATTRIBUTES(const int64_t* block, const int32_t* pass, char* etyp, int32_t* nent, int32_t* nuid,
                                  int32_t* nindex, int32_t* indexident, double* indexval, int32_t* entid, char* title,
                                  int32_t* uid, int32_t* filter_flags, int32_t* filter_params, int32_t* status);

/** Writes the elements of one type in the older layout, as KOB_WRITE_CONNECTIVITIES() writes them in the current one.
 *
 *  The units of the floating-point parameters stand in the block; lenb is the sum of mbunit, lend that of mdunit.
 *  @param[in]  group         int64 [1], group from KOB1_OPEN()
 *  @param[in]  etypelem      text256 [1], element type name
 *  @param[in]  etyppart      text256 [1], entity type name of the parts
 *  @param[in]  etypnode      text256 [1], entity type name of the nodes
 *  @param[in]  nele          int32 [1], number of elements
 *  @param[in]  npele         int32 [1], nodes per element
 *  @param[in]  ndim          int32 [1], dimension of the elements, stored as given
 *  @param[in]  nbint         int32 [1], integer parameters per element
 *  @param[in]  nbfloat       int32 [1], floating-point parameters per element
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  idele         int32 [nele], element identifiers
 *  @param[in]  pid           int32 [nele], part identifier of each element
 *  @param[in]  ic            int32 [nele, npele], node identifiers of each element
 *  @param[in]  iparam        int32 [nele, nbint], integer parameters
 *  @param[in]  fparam        double [nele, nbfloat], floating-point parameters
 *  @param[in]  mbunit        int32 [nbfloat], number of base-unit factors of each floating-point parameter, see
 *                            KOB_WRITE_VARIABLE()
 *  @param[in]  mdunit        int32 [nbfloat], number of derived-unit factors of each floating-point parameter
 *  @param[in]  ubid          int32 [lenb], base-unit identifiers of the factors
 *  @param[in]  ubexp         double [lenb], their exponents
 *  @param[in]  udid          int32 [lend], derived-unit identifiers of the factors
 *  @param[in]  udexp         double [lend], their exponents
 *  @param[in]  state         int32 [1], state number; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; bit 128 has no effect here
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  float_size    int32 [1], stored size of the doubles, see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -1 exists already; -8, -10 the group cannot be created, opened;
 *                            otherwise see @ref storage_codes */
KOB_API void KOB1_WRITE_CONNECTIVITIES(
    const int64_t* group, const char* etypelem, const char* etyppart, const char* etypnode, const int32_t* nele,
    const int32_t* npele, const int32_t* ndim, const int32_t* nbint, const int32_t* nbfloat, const int32_t* nindex,
    const int32_t* indexident, const double* indexval, const int32_t* idele, const int32_t* pid, const int32_t* ic,
    const int32_t* iparam, const double* fparam, const int32_t* mbunit, const int32_t* mdunit, const int32_t* ubid,
    const double* ubexp, const int32_t* udid, const double* udexp, const int32_t* state, const int32_t* filter_flags,
    const int32_t* filter_params, const int32_t* float_size, int32_t* status);

/** Reads the connectivities of one element type of the older layout.
 *
 *  lenb is the sum of mbunit, lend that of mdunit, which only pass 2 reads: provide enough room, or ask HDF5 for the
 *  extents of "data/ubid" and "data/udid".
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 1: the scalar items; 2: everything
 *  @param[out] etypelem      text256 [1], element type name
 *  @param[out] etyppart      text256 [1], entity type name of the parts
 *  @param[out] etypnode      text256 [1], entity type name of the nodes
 *  @param[out] nele          int32 [1], number of elements
 *  @param[out] npele         int32 [1], nodes per element
 *  @param[out] ndim          int32 [1], dimension of the elements
 *  @param[out] nbint         int32 [1], integer parameters per element
 *  @param[out] nbfloat       int32 [1], floating-point parameters per element
 *  @param[out] nindex        int32 [1], number of index values; 0: constant
 *  @param[out] indexident    int32 [nindex], index identifiers of the state; pass 2, like all below
 *  @param[out] indexval      double [nindex], index values of the state
 *  @param[out] idele         int32 [nele], element identifiers
 *  @param[out] pid           int32 [nele], part identifier of each element
 *  @param[out] ic            int32 [nele, npele], node identifiers of each element
 *  @param[out] iparam        int32 [nele, nbint], integer parameters
 *  @param[out] fparam        double [nele, nbfloat], floating-point parameters
 *  @param[out] mbunit        int32 [nbfloat], number of base-unit factors of each floating-point parameter
 *  @param[out] mdunit        int32 [nbfloat], number of derived-unit factors of each floating-point parameter
 *  @param[out] ubid          int32 [lenb], base-unit identifiers of the factors
 *  @param[out] ubexp         double [lenb], their exponents
 *  @param[out] udid          int32 [lend], derived-unit identifiers of the factors
 *  @param[out] udexp         double [lend], their exponents
 *  @param[out] filter_flags  int32 [1], filters of "fparam", see @ref filters; 0 if there is none; pass 2 only
 *  @param[out] filter_params int32 [2], their parameters; pass 2 only
 *  @param[out] status        int32 [1], 0 read; -1 invalid handle, not a connectivities block of this layout, or a part
 *                            of it is missing; -3 another pass (the scalar items are filled in then); otherwise see
 *                            @ref storage_codes */
KOB_API void KOB1_READ_CONNECTIVITIES(const int64_t* block, const int32_t* pass, char* etypelem, char* etyppart,
                                      char* etypnode, int32_t* nele, int32_t* npele, int32_t* ndim, int32_t* nbint,
                                      int32_t* nbfloat, int32_t* nindex, int32_t* indexident, double* indexval,
                                      int32_t* idele, int32_t* pid, int32_t* ic, int32_t* iparam, double* fparam,
                                      int32_t* mbunit, int32_t* mdunit, int32_t* ubid, double* ubexp, int32_t* udid,
                                      double* udexp, int32_t* filter_flags, int32_t* filter_params, int32_t* status);

/** Writes collectors in the older layout, as KOB_WRITE_COLLECTOR() writes them in the current one.
 *
 *  nenttot is the sum of nent.
 *  @param[in]  group         int64 [1], group from KOB1_OPEN()
 *  @param[in]  etypcoll      text256 [1], collector type name
 *  @param[in]  ncoll         int32 [1], number of collectors
 *  @param[in]  ntyp          int32 [1], number of member entity types
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  idcoll        int32 [ncoll], collector identifiers
 *  @param[in]  etyp          text256 [ntyp], names of the member entity types
 *  @param[in]  nent          int32 [ncoll, ntyp], number of members of each type in each collector
 *  @param[in]  entid         int32 [nenttot], identifiers of the members
 *  @param[in]  state         int32 [1], state number of the path; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; bit 128 has no effect here
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  float_size    int32 [1], stored size of the doubles, see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -1 exists already; -8, -10 the group cannot be created, opened;
 *                            otherwise see @ref storage_codes */
KOB_API void KOB1_WRITE_COLLECTOR(const int64_t* group, const char* etypcoll, const int32_t* ncoll, const int32_t* ntyp,
                                  const int32_t* nindex, const int32_t* indexident, const double* indexval,
                                  const int32_t* idcoll, const char* etyp, const int32_t* nent, const int32_t* entid,
                                  const int32_t* state, const int32_t* filter_flags, const int32_t* filter_params,
                                  const int32_t* float_size, int32_t* status);

/** Reads collectors of the older layout.
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 1: the scalar items; 2: everything
 *  @param[out] nenttot       int32 [1], number of members of all collectors and types
 *  @param[out] etypcoll      text256 [1], collector type name
 *  @param[out] ncoll         int32 [1], number of collectors
 *  @param[out] ntyp          int32 [1], number of member entity types
 *  @param[out] nindex        int32 [1], number of index values; 0: constant
 *  @param[out] indexident    int32 [nindex], index identifiers of the state; pass 2, like all below
 *  @param[out] indexval      double [nindex], index values of the state
 *  @param[out] idcoll        int32 [ncoll], collector identifiers
 *  @param[out] etyp          text256 [ntyp], names of the member entity types
 *  @param[out] nent          int32 [ncoll, ntyp], number of members of each type in each collector
 *  @param[out] entid         int32 [nenttot], identifiers of the members
 *  @param[out] filter_flags  int32 [1], filters of the last dataset read, see @ref filters; pass 2 only
 *  @param[out] filter_params int32 [2], their parameters; pass 2 only
 *  @param[out] status        int32 [1], 0 read; -1 invalid handle, not a collector block of this layout, or a part of
 *                            it is missing; -3 another pass (the scalar items are filled in then); otherwise see @ref
 *                            storage_codes */
KOB_API void KOB1_READ_COLLECTOR(const int64_t* block, const int32_t* pass, int32_t* nenttot, char* etypcoll,
                                 int32_t* ncoll, int32_t* ntyp, int32_t* nindex, int32_t* indexident, double* indexval,
                                 int32_t* idcoll, char* etyp, int32_t* nent, int32_t* entid, int32_t* filter_flags,
                                 int32_t* filter_params, int32_t* status);

/** Writes activation flags in the older layout, as KOB_WRITE_ACTIVFLAGS() writes them in the current one.
 *  @param[in]  group         int64 [1], group from KOB1_OPEN()
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  nent          int32 [1], number of entities
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  entid         int32 [nent], entity identifiers, any order
 *  @param[in]  flags         int32 [nent], activation flag of each entity
 *  @param[in]  state         int32 [1], state number of the path; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; bit 128 has no effect here
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  float_size    int32 [1], stored size of the doubles, see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -1 exists already; -8, -10 the group cannot be created, opened;
 *                            otherwise see @ref storage_codes */
KOB_API void KOB1_WRITE_ACTIVFLAGS(const int64_t* group, const char* etyp, const int32_t* nent, const int32_t* nindex,
                                   const int32_t* indexident, const double* indexval, const int32_t* entid,
                                   const int32_t* flags, const int32_t* state, const int32_t* filter_flags,
                                   const int32_t* filter_params, const int32_t* float_size, int32_t* status);

/** Reads activation flags of the older layout.
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 1: the scalar items; 2: everything
 *  @param[out] etyp          text256 [1], entity type name
 *  @param[out] nent          int32 [1], number of entities
 *  @param[out] nindex        int32 [1], number of index values; 0: constant
 *  @param[out] indexident    int32 [nindex], index identifiers of the state; pass 2, like all below
 *  @param[out] indexval      double [nindex], index values of the state
 *  @param[out] entid         int32 [nent], entity identifiers
 *  @param[out] flags         int32 [nent], activation flag of each entity
 *  @param[out] filter_flags  int32 [1], filters of "status", where the flags are stored, see @ref filters
 *  @param[out] filter_params int32 [2], their parameters
 *  @param[out] status        int32 [1], 0 read; -1 invalid handle, not an activation flags block of this layout, or a
 *                            part of it is missing; -3 another pass (the scalar items are filled in then); otherwise
 *                            see @ref storage_codes */
KOB_API void KOB1_READ_ACTIVFLAGS(const int64_t* block, const int32_t* pass, char* etyp, int32_t* nent, int32_t* nindex,
                                  int32_t* indexident, double* indexval, int32_t* entid, int32_t* flags,
                                  int32_t* filter_flags, int32_t* filter_params, int32_t* status);

/** Writes entity results of one state in the older layout, as KOB_WRITE_ENTITYRESULTS() writes them in the current one.
 *  @param[in]  group         int64 [1], group from KOB1_OPEN()
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  nent          int32 [1], number of entities
 *  @param[in]  etypvar       text256 [1], name of the variable
 *  @param[in]  ncoo          int32 [1], number of components
 *  @param[in]  etypzone      text256 [1], zone name; blank: none
 *  @param[in]  zoneid        int32 [1], zone number; negative: none
 *  @param[in]  etypframe     text256 [1], name of the frame of the components
 *  @param[in]  fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each entity, fid
 *  @param[in]  dmpswitch     int32 [1], 1: operator and weight are written; any other: they are not
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  entid         int32 [nent], entity identifiers
 *  @param[in]  fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[in]  fid           int32 [nent], frame identifiers; fswitch 1 only
 *  @param[in]  operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[in]  weight        double [nent], combination weight of each entity; dmpswitch 1 only
 *  @param[in]  res           double [nent, ncoo(, 2)], values; complex with value_size 16 and 32
 *  @param[in]  set           int32 [1], set number of the path; negative: none
 *  @param[in]  state         int32 [1], state number of the path; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the doubles, bit 128 reaches res alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  value_size    int32 [1], see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -1 the block cannot be closed; -8, -10 the group cannot be created,
 *                            opened; -123 fswitch is neither 0 nor 1; otherwise see @ref storage_codes */
KOB_API void KOB1_WRITE_ENTITYRESULTS(const int64_t* group, const char* etyp, const int32_t* nent, const char* etypvar,
                                      const int32_t* ncoo, const char* etypzone, const int32_t* zoneid,
                                      const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch,
                                      const int32_t* nindex, const int32_t* indexident, const double* indexval,
                                      const int32_t* entid, const int32_t* fidglob, const int32_t* fid,
                                      const char* operator_, const double* weight, const double* res,
                                      const int32_t* set, const int32_t* state, const int32_t* filter_flags,
                                      const int32_t* filter_params, const int32_t* value_size, int32_t* status);

/** Reads an entity results block of the older layout.
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 1: the scalar items; 2: everything
 *  @param[out] etyp          text256 [1], entity type name
 *  @param[out] nent          int32 [1], number of entities
 *  @param[out] etypvar       text256 [1], name of the variable
 *  @param[out] ncoo          int32 [1], number of components
 *  @param[out] etypzone      text256 [1], zone name
 *  @param[out] zoneid        int32 [1], zone number
 *  @param[out] etypframe     text256 [1], name of the frame of the components
 *  @param[out] fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each entity, fid
 *  @param[out] dmpswitch     int32 [1], 1: the block holds operator and weight
 *  @param[out] nindex        int32 [1], number of index values; 0: constant
 *  @param[out] indexident    int32 [nindex], index identifiers of the state; pass 2
 *  @param[out] indexval      double [nindex], index values of the state; pass 2
 *  @param[out] entid         int32 [nent], entity identifiers; pass 2, like all below
 *  @param[out] fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[out] fid           int32 [nent], frame identifiers; fswitch 1 only
 *  @param[out] operator_     text256 [ncoo], combination operators; dmpswitch 1 only
 *  @param[out] weight        double [nent], combination weights; dmpswitch 1 only
 *  @param[out] res           double [nent, ncoo(, 2)], values; complex if the status is 1001
 *  @param[out] filter_flags  int32 [1], filters of "res", see @ref filters
 *  @param[out] filter_params int32 [2], their parameters
 *  @param[out] status        int32 [1], 1000 read, real; 1001 read, complex; -1 invalid handle, not an entity results
 *                            block of this layout, or a part of it is missing; -3 another pass; -123 fswitch is neither
 *                            0 nor 1; otherwise see @ref storage_codes */
KOB_API void KOB1_READ_ENTITYRESULTS(const int64_t* block, const int32_t* pass, char* etyp, int32_t* nent,
                                     char* etypvar, int32_t* ncoo, char* etypzone, int32_t* zoneid, char* etypframe,
                                     int32_t* fswitch, int32_t* dmpswitch, int32_t* nindex, int32_t* indexident,
                                     double* indexval, int32_t* entid, int32_t* fidglob, int32_t* fid, char* operator_,
                                     double* weight, double* res, int32_t* filter_flags, int32_t* filter_params,
                                     int32_t* status);

/** Writes sections of an entity results block of the older layout into a group that the caller opened, as
 *  KOB_WRITE_ENTITYRESULTS2() does in the current one.
 *
 *  The places "header", "data" and "index" are created when something goes there; the shared group of section bit 16
 *  has none, its datasets are linked into "data". In pieces rank is 2, of complex values 3.
 *  @param[in]  groups        int64 [2], group of the block, from KOB1_OPENAUTOPATH(); shared group, read with section
 *                            bit 16 only (one handle is enough without)
 *  @param[in]  sections      int32 [1], section bits 1, 2, 4, 8, 16, see @ref sections
 *  @param[in]  unused3       unused [1], not read
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  nent          int32 [1], number of entities
 *  @param[in]  etypvar       text256 [1], name of the variable
 *  @param[in]  ncoo          int32 [1], number of components
 *  @param[in]  etypzone      text256 [1], zone name
 *  @param[in]  zoneid        int32 [1], zone number
 *  @param[in]  etypframe     text256 [1], name of the frame of the components
 *  @param[in]  fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each entity, fid
 *  @param[in]  dmpswitch     int32 [1], 1: operator and weight are written; any other: they are not
 *  @param[in]  nindex        int32 [1], number of index values; 0: constant
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state, always 8-byte
 *  @param[in]  entid         int32 [nent], entity identifiers
 *  @param[in]  fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[in]  fid           int32 [nent], frame identifiers; fswitch 1 only
 *  @param[in]  operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[in]  weight        double [nent], combination weights, always 8-byte; dmpswitch 1 only
 *  @param[in]  res           real [nent, ncoo(, 2)], values; with mode 1 [count], with mode 2 [number of points]
 *  @param[in]  memory_size   int32 [1], size of the numbers in res: 4 or 8
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the floating-point data, bit 128 reaches res alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  value_size    int32 [1], see @ref value_size
 *  @param[in]  mode          int32 [1], 0: the whole table; 1: a block of it; 2: single values
 *  @param[in]  count         int64 [rank], mode 1: extents of the block; mode 2: [1], number of points
 *  @param[in]  start         int64 [rank], mode 1: first row, first column; mode 2: [points, rank], coordinates
 *  @param[out] status        int32 [1], 0 written; a negative handle; -123 fswitch is neither 0 nor 1; -999 unknown
 *                            mode; otherwise see @ref storage_codes (-6031, -6032: outside of the table) */
KOB_API void KOB1_WRITE_ENTITYRESULTS2(const int64_t* groups, const int32_t* sections, const void* unused3,
                                       const char* etyp, const int32_t* nent, const char* etypvar, const int32_t* ncoo,
                                       const char* etypzone, const int32_t* zoneid, const char* etypframe,
                                       const int32_t* fswitch, const int32_t* dmpswitch, const int32_t* nindex,
                                       const int32_t* indexident, const double* indexval, const int32_t* entid,
                                       const int32_t* fidglob, const int32_t* fid, const char* operator_,
                                       const double* weight, const void* res, const int32_t* memory_size,
                                       const int32_t* filter_flags, const int32_t* filter_params,
                                       const int32_t* value_size, const int32_t* mode, const int64_t* count,
                                       const int64_t* start, int32_t* status);

/** Reads sections of an entity results block of the older layout, the whole table or pieces of it.
 *
 *  Without section bit 1 the counts and switches are inputs. In pieces rank is 2, of complex values 3.
 *  @param[in]     block         int64 [1], group of the block
 *  @param[in]     sections      int32 [1], section bits 1, 2, 4, 8, see @ref sections
 *  @param[in]     unused3       unused [1], not read
 *  @param[out]    etyp          text256 [1], entity type name
 *  @param[in,out] nent          int32 [1], number of entities
 *  @param[out]    etypvar       text256 [1], name of the variable
 *  @param[in,out] ncoo          int32 [1], number of components
 *  @param[out]    etypzone      text256 [1], zone name
 *  @param[out]    zoneid        int32 [1], zone number
 *  @param[out]    etypframe     text256 [1], name of the frame of the components
 *  @param[in,out] fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each entity, fid
 *  @param[in,out] dmpswitch     int32 [1], 1: the block holds operator and weight
 *  @param[in,out] nindex        int32 [1], number of index values; 0: constant
 *  @param[out]    indexident    int32 [nindex], index identifiers of the state
 *  @param[out]    indexval      double [nindex], index values of the state, always 8-byte
 *  @param[out]    entid         int32 [nent], entity identifiers
 *  @param[out]    fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[out]    fid           int32 [nent], frame identifiers; fswitch 1 only
 *  @param[out]    operator_     text256 [ncoo], combination operators; dmpswitch 1 only
 *  @param[out]    weight        double [nent], combination weights, always 8-byte; dmpswitch 1 only
 *  @param[out]    res           real [nent, ncoo(, 2)], values; with mode 1 [count], with mode 2 [number of points]
 *  @param[in]     memory_size   int32 [1], size of the numbers in res: 4 or 8
 *  @param[out]    filter_flags  int32 [1], filters of "res", see @ref filters; section bit 8 only
 *  @param[out]    filter_params int32 [2], their parameters; section bit 8 only
 *  @param[in]     mode          int32 [1], 0: the whole table; 1: a block of it; 2: single values
 *  @param[in]     count         int64 [rank], mode 1: extents of the block; mode 2: [1], number of points
 *  @param[in]     start         int64 [rank], mode 1: first row, first column; mode 2: [points, rank], coordinates
 *  @param[out]    status        int32 [1], 1000 read, real; 1001 read, complex; -1 invalid handle, not an entity
 *                               results block of this layout, or a part of it is missing; -123 fswitch is neither 0 nor
 *                               1; -999 unknown mode; otherwise see @ref storage_codes (-6031, -6032: outside of the
 *                               table) */
KOB_API void KOB1_READ_ENTITYRESULTS2(const int64_t* block, const int32_t* sections, const void* unused3, char* etyp,
                                      int32_t* nent, char* etypvar, int32_t* ncoo, char* etypzone, int32_t* zoneid,
                                      char* etypframe, int32_t* fswitch, int32_t* dmpswitch, int32_t* nindex,
                                      int32_t* indexident, double* indexval, int32_t* entid, int32_t* fidglob,
                                      int32_t* fid, char* operator_, double* weight, void* res,
                                      const int32_t* memory_size, int32_t* filter_flags, int32_t* filter_params,
                                      const int32_t* mode, const int64_t* count, const int64_t* start, int32_t* status);

/** Writes element results of one state in the older layout, as KOB_WRITE_ELEMENTRESULTS() writes them in the current
 *  one.
 *  @param[in]  group         int64 [1], group from KOB1_OPEN()
 *  @param[in]  etypelem      text256 [1], element type name
 *  @param[in]  nele          int32 [1], number of elements
 *  @param[in]  etypvar       text256 [1], name of the variable
 *  @param[in]  ncoo          int32 [1], number of components
 *  @param[in]  numl          int32 [1], number of locations in each element
 *  @param[in]  ndim          int32 [1], number of coordinates of a location
 *  @param[in]  etypzone      text256 [1], zone name; blank: none
 *  @param[in]  zoneid        int32 [1], zone number; negative: none
 *  @param[in]  etypframe     text256 [1], name of the frame of the components
 *  @param[in]  fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each element, fid; 2: a frame
 *                            for each element and location, fid
 *  @param[in]  dmpswitch     int32 [1], 1: operator and weight are written; any other: they are not
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  idele         int32 [nele], element identifiers
 *  @param[in]  fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[in]  fid           int32 [nele] or [nele, numl], frame identifiers; fswitch 1 or 2 only
 *  @param[in]  eloc          double [numl, ndim], coordinates of the locations
 *  @param[in]  operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[in]  weight        double [nele], combination weight of each element; dmpswitch 1 only
 *  @param[in]  res           double [nele, numl, ncoo(, 2)], values; complex with value_size 16 and 32
 *  @param[in]  set           int32 [1], set number of the path; negative: none
 *  @param[in]  state         int32 [1], state number of the path; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the doubles, bit 128 reaches res alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  value_size    int32 [1], see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -8, -10 the group cannot be created, opened; -123 fswitch is neither
 *                            0, 1 nor 2; otherwise see @ref storage_codes */
KOB_API void KOB1_WRITE_ELEMENTRESULTS(
    const int64_t* group, const char* etypelem, const int32_t* nele, const char* etypvar, const int32_t* ncoo,
    const int32_t* numl, const int32_t* ndim, const char* etypzone, const int32_t* zoneid, const char* etypframe,
    const int32_t* fswitch, const int32_t* dmpswitch, const int32_t* nindex, const int32_t* indexident,
    const double* indexval, const int32_t* idele, const int32_t* fidglob, const int32_t* fid, const double* eloc,
    const char* operator_, const double* weight, const double* res, const int32_t* set, const int32_t* state,
    const int32_t* filter_flags, const int32_t* filter_params, const int32_t* value_size, int32_t* status);

/** Reads an element results block of the older layout.
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 1: the scalar items; 2: everything
 *  @param[out] etypelem      text256 [1], element type name
 *  @param[out] nele          int32 [1], number of elements
 *  @param[out] etypvar       text256 [1], name of the variable
 *  @param[out] ncoo          int32 [1], number of components
 *  @param[out] numl          int32 [1], number of locations in each element
 *  @param[out] ndim          int32 [1], number of coordinates of a location
 *  @param[out] etypzone      text256 [1], zone name
 *  @param[out] zoneid        int32 [1], zone number
 *  @param[out] etypframe     text256 [1], name of the frame of the components
 *  @param[out] fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each element, fid; 2: a frame
 *                            for each element and location, fid
 *  @param[out] dmpswitch     int32 [1], 1: the block holds operator and weight
 *  @param[out] nindex        int32 [1], number of index values; 0: constant
 *  @param[out] indexident    int32 [nindex], index identifiers of the state; pass 2
 *  @param[out] indexval      double [nindex], index values of the state; pass 2
 *  @param[out] idele         int32 [nele], element identifiers; pass 2, like all below
 *  @param[out] fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[out] fid           int32 [nele] or [nele, numl], frame identifiers; fswitch 1 or 2 only
 *  @param[out] eloc          double [numl, ndim], coordinates of the locations
 *  @param[out] operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[out] weight        double [nele], combination weight of each element; dmpswitch 1 only
 *  @param[out] res           double [nele, numl, ncoo(, 2)], values; complex if the status is 1101
 *  @param[out] filter_flags  int32 [1], filters of "res", see @ref filters
 *  @param[out] filter_params int32 [2], their parameters
 *  @param[out] status        int32 [1], 1100 read, real; 1101 read, complex; -1 invalid handle, not an element results
 *                            block of this layout, or a part of it is missing; -3 another pass (nothing is read); -123
 *                            fswitch is neither 0, 1 nor 2; otherwise see @ref storage_codes */
KOB_API void KOB1_READ_ELEMENTRESULTS(const int64_t* block, const int32_t* pass, char* etypelem, int32_t* nele,
                                      char* etypvar, int32_t* ncoo, int32_t* numl, int32_t* ndim, char* etypzone,
                                      int32_t* zoneid, char* etypframe, int32_t* fswitch, int32_t* dmpswitch,
                                      int32_t* nindex, int32_t* indexident, double* indexval, int32_t* idele,
                                      int32_t* fidglob, int32_t* fid, double* eloc, char* operator_, double* weight,
                                      double* res, int32_t* filter_flags, int32_t* filter_params, int32_t* status);

/** Writes states of a series of entity results in the older layout, as KOB_WRITE_MULTIENTITYRESULTS() does in the
 *  current one.
 *
 *  states is the number of states that the state argument names.
 *  @param[in]  group         int64 [1], group from KOB1_OPEN()
 *  @param[in]  series        text256 [1], name of the series of states, leads the path
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  nent          int32 [1], number of entities
 *  @param[in]  etypvar       text256 [1], name of the variable
 *  @param[in]  ncoo          int32 [1], number of components
 *  @param[in]  etypzone      text256 [1], zone name; blank: none
 *  @param[in]  zoneid        int32 [1], zone number; negative: none
 *  @param[in]  etypframe     text256 [1], name of the frame of the components
 *  @param[in]  fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each entity, fid
 *  @param[in]  dmpswitch     int32 [1], 1: operator and weight are written; any other: they are not
 *  @param[in]  nindex        int32 [1], number of index values of a state
 *  @param[in]  indexident    int32 [states, nindex], index identifiers of each state written
 *  @param[in]  indexval      real [states, nindex], index values of each state written
 *  @param[in]  entid         int32 [nent], entity identifiers
 *  @param[in]  fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[in]  fid           int32 [nent], frame identifiers; fswitch 1 only
 *  @param[in]  operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[in]  weight        real [nent], combination weight of each entity; dmpswitch 1 only
 *  @param[in]  res           real [states, nent, ncoo(, 2)], values; complex with value_size 16 and 32
 *  @param[in]  set           int32 [1], set number of the path; negative: none
 *  @param[in]  state         int32 [1], s >= 0: the arrays hold s states, written to rows 0 to s - 1; s < 0: they hold
 *                            one state, written to row -s
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the floating-point data, bit 128 reaches res alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  value_size    int32 [1], see @ref value_size; plus 1024: indexval, weight and res are 4-byte numbers in
 *                            memory
 *  @param[out] status        int32 [1], 0 written; -1 the group cannot be closed; -8, -10 the group cannot be created,
 *                            opened; -123 fswitch is neither 0 nor 1; otherwise see @ref storage_codes */
KOB_API void KOB1_WRITE_MULTIENTITYRESULTS(const int64_t* group, const char* series, const char* etyp,
                                           const int32_t* nent, const char* etypvar, const int32_t* ncoo,
                                           const char* etypzone, const int32_t* zoneid, const char* etypframe,
                                           const int32_t* fswitch, const int32_t* dmpswitch, const int32_t* nindex,
                                           const int32_t* indexident, const void* indexval, const int32_t* entid,
                                           const int32_t* fidglob, const int32_t* fid, const char* operator_,
                                           const void* weight, const void* res, const int32_t* set,
                                           const int32_t* state, const int32_t* filter_flags,
                                           const int32_t* filter_params, const int32_t* value_size, int32_t* status);

/** Reads a series of entity results of the older layout with all its states.
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 1: the scalar items; 2: everything
 *  @param[out] series        text256 [1], name of the series of states
 *  @param[out] etyp          text256 [1], entity type name
 *  @param[out] nent          int32 [1], number of entities
 *  @param[out] etypvar       text256 [1], name of the variable
 *  @param[out] ncoo          int32 [1], number of components
 *  @param[out] etypzone      text256 [1], zone name
 *  @param[out] zoneid        int32 [1], zone number
 *  @param[out] etypframe     text256 [1], name of the frame of the components
 *  @param[out] fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each entity, fid
 *  @param[out] dmpswitch     int32 [1], 1: the block holds operator and weight
 *  @param[out] nindex        int32 [1], number of index values of a state
 *  @param[out] nstate        int32 [1], number of state rows
 *  @param[out] indexident    int32 [nstate, nindex], index identifiers of each state; pass 2
 *  @param[out] indexval      double [nstate, nindex], index values of each state; pass 2
 *  @param[out] entid         int32 [nent], entity identifiers; pass 2, like all below
 *  @param[out] fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[out] fid           int32 [nent], frame identifiers; fswitch 1 only
 *  @param[out] operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[out] weight        double [nent], combination weight of each entity; dmpswitch 1 only
 *  @param[out] res           double [nstate, nent, ncoo(, 2)], values; complex if the status is 1051
 *  @param[out] filter_flags  int32 [1], filters of "res", see @ref filters
 *  @param[out] filter_params int32 [2], their parameters
 *  @param[out] status        int32 [1], 1050 read, real; 1051 read, complex; -1 invalid handle, not a block of
 *                            multi-state entity results of this layout, or a part of it is missing; -3 another pass;
 *                            -123 fswitch is neither 0 nor 1; otherwise see @ref storage_codes */
KOB_API void KOB1_READ_MULTIENTITYRESULTS(const int64_t* block, const int32_t* pass, char* series, char* etyp,
                                          int32_t* nent, char* etypvar, int32_t* ncoo, char* etypzone, int32_t* zoneid,
                                          char* etypframe, int32_t* fswitch, int32_t* dmpswitch, int32_t* nindex,
                                          int32_t* nstate, int32_t* indexident, double* indexval, int32_t* entid,
                                          int32_t* fidglob, int32_t* fid, char* operator_, double* weight, double* res,
                                          int32_t* filter_flags, int32_t* filter_params, int32_t* status);

/** Writes states of a series of entity results of the older layout into a group that the caller opened, as
 *  KOB_WRITE_MULTIENTITYRESULTS2() does in the current one.
 *
 *  states is the number of states that state or the selection names. rank is 3, of complex values 4; state rows count
 *  from the first state of the block.
 *  @param[in]  groups        int64 [2], group of the block, from KOB1_OPENAUTOPATH(); the second one is not read
 *  @param[in]  unused2       unused [1], not read
 *  @param[in]  unused3       unused [1], not read
 *  @param[in]  series        text256 [1], name of the series of states
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  nent          int32 [1], number of entities
 *  @param[in]  etypvar       text256 [1], name of the variable
 *  @param[in]  ncoo          int32 [1], number of components
 *  @param[in]  etypzone      text256 [1], zone name; blank: none
 *  @param[in]  zoneid        int32 [1], zone number; negative: none
 *  @param[in]  etypframe     text256 [1], name of the frame of the components
 *  @param[in]  fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each entity, fid
 *  @param[in]  dmpswitch     int32 [1], 1: operator and weight are written; any other: they are not
 *  @param[in]  nindex        int32 [1], number of index values of a state
 *  @param[in]  indexident    int32 [states, nindex], index identifiers of each state written, see
 *                            KOB_WRITE_MULTIENTITYRESULTC()
 *  @param[in]  indexval      real [states, nindex], index values of each state written
 *  @param[in]  entid         int32 [nent], entity identifiers
 *  @param[in]  fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[in]  fid           int32 [nent], frame identifiers; fswitch 1 only
 *  @param[in]  operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[in]  weight        real [nent], combination weight of each entity; dmpswitch 1 only
 *  @param[in]  res           real [states, nent, ncoo(, 2)], values; with mode 1 [count], with mode 2 [number of
 *                            points]
 *  @param[in]  memory_size   int32 [1], size of the numbers in indexval, weight and res: 4 or 8
 *  @param[in]  state         int32 [1], mode 0: number of states, written to rows 0 to state - 1; else not used
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the floating-point data, bit 128 reaches res alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  value_size    int32 [1], see @ref value_size
 *  @param[in]  mode          int32 [1], 0: whole states; 1: a block of values; 2: single values
 *  @param[in]  count         int64 [rank], mode 1: extents of the block of values; mode 2: [1], number of points
 *  @param[in]  start         int64 [rank], mode 1: first state row, first entity, first component; mode 2: [points,
 *                            rank], coordinates
 *  @param[out] nstate        int32 [1], number of state rows that the block holds now
 *  @param[out] status        int32 [1], 0 written; a negative handle; -123 fswitch is neither 0 nor 1; -999 unknown
 *                            mode, or mode 0 with a negative state; otherwise see @ref storage_codes */
KOB_API void KOB1_WRITE_MULTIENTITYRESULTS2(
    const int64_t* groups, const void* unused2, const void* unused3, const char* series, const char* etyp,
    const int32_t* nent, const char* etypvar, const int32_t* ncoo, const char* etypzone, const int32_t* zoneid,
    const char* etypframe, const int32_t* fswitch, const int32_t* dmpswitch, const int32_t* nindex,
    const int32_t* indexident, const void* indexval, const int32_t* entid, const int32_t* fidglob, const int32_t* fid,
    const char* operator_, const void* weight, const void* res, const int32_t* memory_size, const int32_t* state,
    const int32_t* filter_flags, const int32_t* filter_params, const int32_t* value_size, const int32_t* mode,
    const int64_t* count, const int64_t* start, int32_t* nstate, int32_t* status);

/** Reads sections of a series of entity results of the older layout, all states or pieces.
 *
 *  rank is 3, of complex values 4.
 *  @param[in]     block         int64 [1], group of the block
 *  @param[in]     sections      int32 [1], section bits 1, 2, 4, 8, see @ref sections
 *  @param[in]     unused3       unused [1], not read
 *  @param[out]    series        text256 [1], name of the series of states
 *  @param[out]    etyp          text256 [1], entity type name
 *  @param[in,out] nent          int32 [1], number of entities
 *  @param[out]    etypvar       text256 [1], name of the variable
 *  @param[in,out] ncoo          int32 [1], number of components
 *  @param[out]    etypzone      text256 [1], zone name
 *  @param[out]    zoneid        int32 [1], zone number
 *  @param[out]    etypframe     text256 [1], name of the frame of the components
 *  @param[in,out] fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each entity, fid
 *  @param[in,out] dmpswitch     int32 [1], 1: the block holds operator and weight
 *  @param[in,out] nindex        int32 [1], number of index values of a state
 *  @param[in,out] nstate        int32 [1], number of state rows
 *  @param[out]    indexident    int32 [nstate, nindex], index identifiers of each state
 *  @param[out]    indexval      real [nstate, nindex], index values of each state
 *  @param[out]    entid         int32 [nent], entity identifiers
 *  @param[out]    fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[out]    fid           int32 [nent], frame identifiers; fswitch 1 only
 *  @param[out]    operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[out]    weight        real [nent], combination weight of each entity; dmpswitch 1 only
 *  @param[out]    res           real [nstate, nent, ncoo(, 2)], values; with mode 1 [count], with mode 2 [number of
 *                               points]
 *  @param[in]     memory_size   int32 [1], size of the numbers in indexval, weight and res: 4 or 8
 *  @param[out]    filter_flags  int32 [1], filters of "res", see @ref filters; section bit 8 only
 *  @param[out]    filter_params int32 [2], their parameters
 *  @param[in]     mode          int32 [1], 0: all states; 1: a block of values; 2: single values
 *  @param[in]     count         int64 [rank], mode 1: extents of the block of values; mode 2: [1], number of points
 *  @param[in]     start         int64 [rank], mode 1: first state row, first entity, first component; mode 2: [points,
 *                               rank], coordinates
 *  @param[out]    status        int32 [1], 1050 read, real; 1051 read, complex; -1 invalid handle, not a block of
 *                               multi-state entity results of this layout, or a part of it is missing; -123 fswitch is
 *                               neither 0 nor 1; -999 unknown mode; otherwise see @ref storage_codes */
KOB_API void KOB1_READ_MULTIENTITYRESULTS2(const int64_t* block, const int32_t* sections, const void* unused3,
                                           char* series, char* etyp, int32_t* nent, char* etypvar, int32_t* ncoo,
                                           char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch,
                                           int32_t* dmpswitch, int32_t* nindex, int32_t* nstate, int32_t* indexident,
                                           void* indexval, int32_t* entid, int32_t* fidglob, int32_t* fid,
                                           char* operator_, void* weight, void* res, const int32_t* memory_size,
                                           int32_t* filter_flags, int32_t* filter_params, const int32_t* mode,
                                           const int64_t* count, const int64_t* start, int32_t* status);

/** Writes whole states or pieces of a series of entity results in the older layout, as KOB_WRITE_MULTIENTITYRESULTC()
 *  does in the current one.
 *
 *  states is the number of states that state or the selection names. rank is 3, of complex values 4; state rows count
 *  from the first state of the block.
 *  @param[in]  group         int64 [1], group from KOB1_OPEN()
 *  @param[in]  series        text256 [1], name of the series of states, leads the path
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  nent          int32 [1], number of entities
 *  @param[in]  etypvar       text256 [1], name of the variable
 *  @param[in]  ncoo          int32 [1], number of components
 *  @param[in]  etypzone      text256 [1], zone name; blank: none
 *  @param[in]  zoneid        int32 [1], zone number; negative: none
 *  @param[in]  etypframe     text256 [1], name of the frame of the components
 *  @param[in]  fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each entity, fid
 *  @param[in]  dmpswitch     int32 [1], 1: operator and weight are written; any other: they are not
 *  @param[in]  nindex        int32 [1], number of index values of a state
 *  @param[in]  indexident    int32 [states, nindex], index identifiers of each state written
 *  @param[in]  indexval      real [states, nindex], index values of each state written
 *  @param[in]  entid         int32 [nent], entity identifiers
 *  @param[in]  fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[in]  fid           int32 [nent], frame identifiers; fswitch 1 only
 *  @param[in]  operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[in]  weight        real [nent], combination weight of each entity; dmpswitch 1 only
 *  @param[in]  res           real [states, nent, ncoo(, 2)], values; with a selection [count], or [number of points]
 *  @param[in]  set           int32 [1], set number of the path; negative: none
 *  @param[in]  state         int32 [1], see KOB_WRITE_MULTIENTITYRESULTS(); negative with mode 1 or 2: the selection
 *                            counts
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the floating-point data, bit 128 reaches res alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  value_size    int32 [1], see @ref value_size; plus 1024: indexval, weight and res are 4-byte numbers in
 *                            memory
 *  @param[in]  mode          int32 [1], 0: whole states; 1: a block of values; 2: single values
 *  @param[in]  count         int64 [rank], mode 1: extents of the block of values; mode 2: [1], number of points
 *  @param[in]  start         int64 [rank], mode 1: first state row, first entity, first component; mode 2: [points,
 *                            rank], coordinates
 *  @param[out] status        int32 [1], 0 written; -1 the group cannot be closed; -8, -10 the group cannot be created,
 *                            opened; -123 fswitch is neither 0 nor 1; -999 unknown mode; otherwise see @ref
 *                            storage_codes */
KOB_API void KOB1_WRITE_MULTIENTITYRESULTC(const int64_t* group, const char* series, const char* etyp,
                                           const int32_t* nent, const char* etypvar, const int32_t* ncoo,
                                           const char* etypzone, const int32_t* zoneid, const char* etypframe,
                                           const int32_t* fswitch, const int32_t* dmpswitch, const int32_t* nindex,
                                           const int32_t* indexident, const void* indexval, const int32_t* entid,
                                           const int32_t* fidglob, const int32_t* fid, const char* operator_,
                                           const void* weight, const void* res, const int32_t* set,
                                           const int32_t* state, const int32_t* filter_flags,
                                           const int32_t* filter_params, const int32_t* value_size, const int32_t* mode,
                                           const int64_t* count, const int64_t* start, int32_t* status);

/** Reads a series of entity results of the older layout, whole or by state or in pieces.
 *
 *  1024 added to the pass means that indexval, weight and res are 4-byte numbers in memory. Pass 1 reads the scalar
 *  items, 2 everything; 3, with counts and switches as inputs, res: with mode 0 the state row that nstate says, else
 *  the selection; 4 the same and its index rows, with mode 0 one, with mode 1 count[0], with mode 2 one for each point;
 *  5, with counts and switches as inputs, entid to weight. rank is 3, of complex values 4.
 *  @param[in]     block         int64 [1], group of the block
 *  @param[in]     pass          int32 [1], 1 to 5, plus 1024 for 4-byte numbers
 *  @param[out]    series        text256 [1], name of the series of states
 *  @param[out]    etyp          text256 [1], entity type name
 *  @param[in,out] nent          int32 [1], number of entities
 *  @param[out]    etypvar       text256 [1], name of the variable
 *  @param[in,out] ncoo          int32 [1], number of components
 *  @param[out]    etypzone      text256 [1], zone name
 *  @param[out]    zoneid        int32 [1], zone number
 *  @param[out]    etypframe     text256 [1], name of the frame of the components
 *  @param[in,out] fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each entity, fid
 *  @param[in,out] dmpswitch     int32 [1], 1: the block holds operator and weight
 *  @param[in,out] nindex        int32 [1], number of index values of a state
 *  @param[in,out] nstate        int32 [1], number of state rows; pass 3 and 4: the state row to read, from 0
 *  @param[out]    indexident    int32 [nstate, nindex], index identifiers of each state; pass 2 and 4
 *  @param[out]    indexval      real [nstate, nindex], index values of each state; pass 2 and 4
 *  @param[out]    entid         int32 [nent], entity identifiers; pass 2 and 5, like those down to weight
 *  @param[out]    fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[out]    fid           int32 [nent], frame identifiers; fswitch 1 only
 *  @param[out]    operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[out]    weight        real [nent], combination weight of each entity; dmpswitch 1 only
 *  @param[out]    res           real [nstate, nent, ncoo(, 2)], values; pass 3 and 4: [nent, ncoo(, 2)], [count] or
 *                               [number of points]
 *  @param[out]    filter_flags  int32 [1], filters of "res", see @ref filters; pass 2, 3 and 4
 *  @param[out]    filter_params int32 [2], their parameters
 *  @param[in]     mode          int32 [1], 0: a whole state; 1: a block of values; 2: single values; read in pass 3 and
 *                               4 only
 *  @param[in]     count         int64 [rank], mode 1: extents of the block of values; mode 2: [1], number of points
 *  @param[in]     start         int64 [rank], mode 1: first state row, first entity, first component; mode 2: [points,
 *                               rank], coordinates
 *  @param[out]    status        int32 [1], 1050 read, real; 1051 read, complex; -1 invalid handle, not a block of
 *                               multi-state entity results of this layout, or a part of it is missing; -3 another pass;
 *                               -123 fswitch is neither 0 nor 1; -999 unknown mode; otherwise see @ref storage_codes */
KOB_API void KOB1_READ_MULTIENTITYRESULTC(const int64_t* block, const int32_t* pass, char* series, char* etyp,
                                          int32_t* nent, char* etypvar, int32_t* ncoo, char* etypzone, int32_t* zoneid,
                                          char* etypframe, int32_t* fswitch, int32_t* dmpswitch, int32_t* nindex,
                                          int32_t* nstate, int32_t* indexident, void* indexval, int32_t* entid,
                                          int32_t* fidglob, int32_t* fid, char* operator_, void* weight, void* res,
                                          int32_t* filter_flags, int32_t* filter_params, const int32_t* mode,
                                          const int64_t* count, const int64_t* start, int32_t* status);

/** Writes the leading states of a series of element results in the older layout, as KOB_WRITE_MULTIELEMENTRESULTS()
 *  does in the current one.
 *  @param[in]  group         int64 [1], group from KOB1_OPEN()
 *  @param[in]  series        text256 [1], name of the series of states, leads the path
 *  @param[in]  etypelem      text256 [1], element type name
 *  @param[in]  nele          int32 [1], number of elements
 *  @param[in]  etypvar       text256 [1], name of the variable
 *  @param[in]  ncoo          int32 [1], number of components
 *  @param[in]  numl          int32 [1], number of locations in each element
 *  @param[in]  ndim          int32 [1], number of coordinates of a location
 *  @param[in]  etypzone      text256 [1], zone name; blank: none
 *  @param[in]  zoneid        int32 [1], zone number; negative: none
 *  @param[in]  etypframe     text256 [1], name of the frame of the components
 *  @param[in]  fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each element, fid; 2: a frame
 *                            for each element and location, fid
 *  @param[in]  dmpswitch     int32 [1], 1: operator and weight are written; any other: they are not
 *  @param[in]  nindex        int32 [1], number of index values of a state
 *  @param[in]  indexident    int32 [n, nindex], index identifiers of each state
 *  @param[in]  indexval      double [n, nindex], index values of each state
 *  @param[in]  idele         int32 [nele], element identifiers
 *  @param[in]  fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[in]  fid           int32 [nele] or [nele, numl], frame identifiers; fswitch 1 or 2 only
 *  @param[in]  eloc          double [numl, ndim], coordinates of the locations
 *  @param[in]  operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[in]  weight        double [nele], combination weight of each element; dmpswitch 1 only
 *  @param[in]  res           double [n, nele, numl, ncoo(, 2)], values; complex with value_size 16 and 32
 *  @param[in]  set           int32 [1], set number of the path; negative: none
 *  @param[in]  n             int32 [1], number of states, written to rows 0 to n - 1
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the doubles, bit 128 reaches res alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  value_size    int32 [1], see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -8, -10 the group cannot be created, opened; -123 fswitch is neither
 *                            0, 1 nor 2; -999 n is negative; otherwise see @ref storage_codes */
KOB_API void KOB1_WRITE_MULTIELEMENTRESULTS(const int64_t* group, const char* series, const char* etypelem,
                                            const int32_t* nele, const char* etypvar, const int32_t* ncoo,
                                            const int32_t* numl, const int32_t* ndim, const char* etypzone,
                                            const int32_t* zoneid, const char* etypframe, const int32_t* fswitch,
                                            const int32_t* dmpswitch, const int32_t* nindex, const int32_t* indexident,
                                            const double* indexval, const int32_t* idele, const int32_t* fidglob,
                                            const int32_t* fid, const double* eloc, const char* operator_,
                                            const double* weight, const double* res, const int32_t* set,
                                            const int32_t* n, const int32_t* filter_flags, const int32_t* filter_params,
                                            const int32_t* value_size, int32_t* status);

/** Reads a series of element results of the older layout with all its states.
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 1: the scalar items; 2: everything
 *  @param[out] series        text256 [1], name of the series of states
 *  @param[out] etypelem      text256 [1], element type name
 *  @param[out] nele          int32 [1], number of elements
 *  @param[out] etypvar       text256 [1], name of the variable
 *  @param[out] ncoo          int32 [1], number of components
 *  @param[out] numl          int32 [1], number of locations in each element
 *  @param[out] ndim          int32 [1], number of coordinates of a location
 *  @param[out] etypzone      text256 [1], zone name
 *  @param[out] zoneid        int32 [1], zone number
 *  @param[out] etypframe     text256 [1], name of the frame of the components
 *  @param[out] fswitch       int32 [1], 0: one frame, fidglob, for all; 1: a frame for each element, fid; 2: a frame
 *                            for each element and location, fid
 *  @param[out] dmpswitch     int32 [1], 1: the block holds operator and weight
 *  @param[out] nindex        int32 [1], number of index values of a state
 *  @param[out] nstate        int32 [1], number of state rows
 *  @param[out] indexident    int32 [nstate, nindex], index identifiers of each state; pass 2
 *  @param[out] indexval      double [nstate, nindex], index values of each state; pass 2
 *  @param[out] idele         int32 [nele], element identifiers; pass 2, like all below
 *  @param[out] fidglob       int32 [1], frame identifier; fswitch 0 only
 *  @param[out] fid           int32 [nele] or [nele, numl], frame identifiers; fswitch 1 or 2 only
 *  @param[out] eloc          double [numl, ndim], coordinates of the locations
 *  @param[out] operator_     text256 [ncoo], combination operator of each component; dmpswitch 1 only
 *  @param[out] weight        double [nele], combination weight of each element; dmpswitch 1 only
 *  @param[out] res           double [nstate, nele, numl, ncoo(, 2)], values; complex if the status is 1151
 *  @param[out] filter_flags  int32 [1], filters of "res", see @ref filters
 *  @param[out] filter_params int32 [2], their parameters
 *  @param[out] status        int32 [1], 1150 read, real; 1151 read, complex; -1 invalid handle, not a block of
 *                            multi-state element results of this layout, or a part of it is missing; -3 another pass
 *                            (nothing is read); -123 fswitch is neither 0, 1 nor 2; otherwise see @ref storage_codes */
KOB_API void KOB1_READ_MULTIELEMENTRESULTS(const int64_t* block, const int32_t* pass, char* series, char* etypelem,
                                           int32_t* nele, char* etypvar, int32_t* ncoo, int32_t* numl, int32_t* ndim,
                                           char* etypzone, int32_t* zoneid, char* etypframe, int32_t* fswitch,
                                           int32_t* dmpswitch, int32_t* nindex, int32_t* nstate, int32_t* indexident,
                                           double* indexval, int32_t* idele, int32_t* fidglob, int32_t* fid,
                                           double* eloc, char* operator_, double* weight, double* res,
                                           int32_t* filter_flags, int32_t* filter_params, int32_t* status);

/** Writes the leading states of a series of activation flags in the older layout, as KOB_WRITE_MULTIACTIVFLAGS() does
 *  in the current one.
 *  @param[in]  group         int64 [1], group from KOB1_OPEN()
 *  @param[in]  series        text256 [1], name of the series of states, leads the path
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  nent          int32 [1], number of entities
 *  @param[in]  nindex        int32 [1], number of index values of a state
 *  @param[in]  indexident    int32 [n, nindex], index identifiers of each state
 *  @param[in]  indexval      double [n, nindex], index values of each state
 *  @param[in]  entid         int32 [nent], entity identifiers
 *  @param[in]  flags         int32 [n, nent], activation flag of each entity in each state
 *  @param[in]  n             int32 [1], number of states, written to rows 0 to n - 1
 *  @param[in]  filter_flags  int32 [1], see @ref filters; bit 128 has no effect here
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  float_size    int32 [1], stored size of the doubles, see @ref value_size
 *  @param[out] status        int32 [1], 0 written; -8, -10 the group cannot be created, opened; -999 n is negative;
 *                            otherwise see @ref storage_codes */
KOB_API void KOB1_WRITE_MULTIACTIVFLAGS(const int64_t* group, const char* series, const char* etyp, const int32_t* nent,
                                        const int32_t* nindex, const int32_t* indexident, const double* indexval,
                                        const int32_t* entid, const int32_t* flags, const int32_t* n,
                                        const int32_t* filter_flags, const int32_t* filter_params,
                                        const int32_t* float_size, int32_t* status);

/** Reads a series of activation flags of the older layout with all its states.
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 1: the scalar items; 2: everything
 *  @param[out] series        text256 [1], name of the series of states
 *  @param[out] etyp          text256 [1], entity type name
 *  @param[out] nent          int32 [1], number of entities
 *  @param[out] nindex        int32 [1], number of index values of a state
 *  @param[out] nstate        int32 [1], number of state rows
 *  @param[out] indexident    int32 [nstate, nindex], index identifiers of each state; pass 2
 *  @param[out] indexval      double [nstate, nindex], index values of each state; pass 2
 *  @param[out] entid         int32 [nent], entity identifiers; pass 2, like all below
 *  @param[out] flags         int32 [nstate, nent], activation flag of each entity in each state
 *  @param[out] filter_flags  int32 [1], filters of "status", where the flags are stored, see @ref filters
 *  @param[out] filter_params int32 [2], their parameters
 *  @param[out] status        int32 [1], 0 read; -1 invalid handle, not a block of multi-state activation flags of this
 *                            layout, or a part of it is missing; -3 another pass (the attributes are filled in then);
 *                            otherwise see @ref storage_codes */
KOB_API void KOB1_READ_MULTIACTIVFLAGS(const int64_t* block, const int32_t* pass, char* series, char* etyp,
                                       int32_t* nent, int32_t* nindex, int32_t* nstate, int32_t* indexident,
                                       double* indexval, int32_t* entid, int32_t* flags, int32_t* filter_flags,
                                       int32_t* filter_params, int32_t* status);

/** Writes a dense matrix in the older layout, as KOB_WRITE_DENSEMATRIX() writes it in the current one.
 *
 *  In pieces rank is 2, of complex values 3.
 *  @param[in]  group         int64 [1], group from KOB1_OPEN()
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  entid         int32 [1], entity identifier
 *  @param[in]  etypvar       text256 [1], name of the matrix variable
 *  @param[in]  nrow          int32 [1], number of rows
 *  @param[in]  ncolumn       int32 [1], number of columns
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  val           double [nrow, ncolumn(, 2)], values; with mode 1 [count], with mode 2 [number of points]
 *  @param[in]  state         int32 [1], state number of the path; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the doubles, bit 128 reaches val alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  value_size    int32 [1], see @ref value_size
 *  @param[in]  mode          int32 [1], 0: all values; 1: a block of them; 2: single values
 *  @param[in]  count         int64 [rank], mode 1: extents of the block; mode 2: [1], number of points
 *  @param[in]  start         int64 [rank], mode 1: first indices; mode 2: [points, rank], coordinates
 *  @param[out] status        int32 [1], 0 written; -8, -10 the group cannot be created, opened; -999 unknown mode
 *                            (attributes and index of a new block are written); otherwise see @ref storage_codes
 *  @param[in]  unused19      int32 by value, ignored
 *  @param[in]  unused20      int32 by value, ignored */
KOB_API void KOB1_WRITE_DENSEMATRIX(const int64_t* group, const char* etyp, const int32_t* entid, const char* etypvar,
                                    const int32_t* nrow, const int32_t* ncolumn, const int32_t* nindex,
                                    const int32_t* indexident, const double* indexval, const double* val,
                                    const int32_t* state, const int32_t* filter_flags, const int32_t* filter_params,
                                    const int32_t* value_size, const int32_t* mode, const int64_t* count,
                                    const int64_t* start, int32_t* status, int32_t unused19, int32_t unused20);

/** Reads a dense matrix of the older layout, whole or in pieces.
 *
 *  In pieces rank is 2, of complex values 3.
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 1: the scalar items; 2: everything; 3: a block of the values; 4: single values
 *  @param[out] etyp          text256 [1], entity type name
 *  @param[out] entid         int32 [1], entity identifier
 *  @param[out] etypvar       text256 [1], name of the matrix variable
 *  @param[out] nrow          int32 [1], number of rows
 *  @param[out] ncolumn       int32 [1], number of columns
 *  @param[out] nindex        int32 [1], number of index values; 0: constant
 *  @param[out] indexident    int32 [nindex], index identifiers of the state; pass 2
 *  @param[out] indexval      double [nindex], index values of the state; pass 2
 *  @param[out] val           double [nrow, ncolumn(, 2)], values; complex if the status is 10001; pass 3 [count], pass
 *                            4 [number of points]
 *  @param[out] filter_flags  int32 [1], filters of "val", see @ref filters; pass 2, 3 and 4
 *  @param[out] filter_params int32 [2], their parameters
 *  @param[in]  count         int64 [rank], pass 3: extents of the block; pass 4: [1], number of points
 *  @param[in]  start         int64 [rank], pass 3: first indices; pass 4: [points, rank], coordinates
 *  @param[out] status        int32 [1], 10000 read, real; 10001 read, complex; -1 invalid handle, not a dense matrix
 *                            block of this layout, or a part of it is missing; -3 another pass (nothing is read);
 *                            otherwise see @ref storage_codes
 *  @param[in]  unused17      int32 by value, ignored
 *  @param[in]  unused18      int32 by value, ignored */
KOB_API void KOB1_READ_DENSEMATRIX(const int64_t* block, const int32_t* pass, char* etyp, int32_t* entid, char* etypvar,
                                   int32_t* nrow, int32_t* ncolumn, int32_t* nindex, int32_t* indexident,
                                   double* indexval, double* val, int32_t* filter_flags, int32_t* filter_params,
                                   const int64_t* count, const int64_t* start, int32_t* status, int32_t unused17,
                                   int32_t unused18);

/** Writes a triangular matrix in the older layout, as KOB_WRITE_TRIANGULARMATRIX() writes it in the current one.
 *
 *  npacked is nsize (nsize + 1) / 2. In pieces rank is 1, of complex values 2.
 *  @param[in]  group         int64 [1], group from KOB1_OPEN()
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  entid         int32 [1], entity identifier
 *  @param[in]  etypvar       text256 [1], name of the matrix variable
 *  @param[in]  nsize         int32 [1], order of the matrix
 *  @param[in]  matrixtype    int32 [1], code of the kind of matrix, stored as given
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  val           double [npacked(, 2)], values; with mode 1 [count], with mode 2 [number of points]
 *  @param[in]  state         int32 [1], state number of the path; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the doubles, bit 128 reaches val alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  value_size    int32 [1], see @ref value_size
 *  @param[in]  mode          int32 [1], 0: all values; 1: a block of them; 2: single values
 *  @param[in]  count         int64 [rank], mode 1: extents of the block; mode 2: [1], number of points
 *  @param[in]  start         int64 [rank], mode 1: first indices; mode 2: [points, rank], coordinates
 *  @param[out] status        int32 [1], 0 written; -8, -10 the group cannot be created, opened; -999 unknown mode
 *                            (attributes and index of a new block are written); otherwise see @ref storage_codes
 *  @param[in]  unused19      int32 by value, ignored
 *  @param[in]  unused20      int32 by value, ignored */
KOB_API void KOB1_WRITE_TRIANGULARMATRIX(const int64_t* group, const char* etyp, const int32_t* entid,
                                         const char* etypvar, const int32_t* nsize, const int32_t* matrixtype,
                                         const int32_t* nindex, const int32_t* indexident, const double* indexval,
                                         const double* val, const int32_t* state, const int32_t* filter_flags,
                                         const int32_t* filter_params, const int32_t* value_size, const int32_t* mode,
                                         const int64_t* count, const int64_t* start, int32_t* status, int32_t unused19,
                                         int32_t unused20);

/** Reads a triangular matrix of the older layout, whole or in pieces.
 *
 *  npacked is nsize (nsize + 1) / 2. In pieces rank is 1, of complex values 2.
 *  @param[in]  block         int64 [1], group of the block
 *  @param[in]  pass          int32 [1], 1: the scalar items; 2: everything; 3: a block of the values; 4: single values
 *  @param[out] etyp          text256 [1], entity type name
 *  @param[out] entid         int32 [1], entity identifier
 *  @param[out] etypvar       text256 [1], name of the matrix variable
 *  @param[out] nsize         int32 [1], order of the matrix
 *  @param[out] matrixtype    int32 [1], code of the kind of matrix
 *  @param[out] nindex        int32 [1], number of index values; 0: constant
 *  @param[out] indexident    int32 [nindex], index identifiers of the state; pass 2
 *  @param[out] indexval      double [nindex], index values of the state; pass 2
 *  @param[out] val           double [npacked(, 2)], values; complex if the status is 10101; pass 3 [count], pass 4
 *                            [number of points]
 *  @param[out] filter_flags  int32 [1], filters of "val", see @ref filters; pass 2, 3 and 4
 *  @param[out] filter_params int32 [2], their parameters
 *  @param[in]  count         int64 [rank], pass 3: extents of the block; pass 4: [1], number of points
 *  @param[in]  start         int64 [rank], pass 3: first indices; pass 4: [points, rank], coordinates
 *  @param[out] status        int32 [1], 10100 read, real; 10101 read, complex; -1 invalid handle, not a triangular
 *                            matrix block of this layout, or a part of it is missing; -3 another pass (nothing is
 *                            read); otherwise see @ref storage_codes
 *  @param[in]  unused17      int32 by value, ignored
 *  @param[in]  unused18      int32 by value, ignored */
KOB_API void KOB1_READ_TRIANGULARMATRIX(const int64_t* block, const int32_t* pass, char* etyp, int32_t* entid,
                                        char* etypvar, int32_t* nsize, int32_t* matrixtype, int32_t* nindex,
                                        int32_t* indexident, double* indexval, double* val, int32_t* filter_flags,
                                        int32_t* filter_params, const int64_t* count, const int64_t* start,
                                        int32_t* status, int32_t unused17, int32_t unused18);

/** Writes a sparse matrix in the older layout, as KOB_WRITE_SPARSEMATRIX() writes it in the current one.
 *
 *  In pieces rank is 1, of complex values 2.
 *  @param[in]  group         int64 [1], group from KOB1_OPEN()
 *  @param[in]  etyp          text256 [1], entity type name
 *  @param[in]  entid         int32 [1], entity identifier
 *  @param[in]  etypvar       text256 [1], name of the matrix variable
 *  @param[in]  nrow          int32 [1], number of rows
 *  @param[in]  nnz           int64 [1], number of stored entries
 *  @param[in]  nindex        int32 [1], number of index values, see @ref state_index; 0: constant
 *  @param[in]  indexident    int32 [nindex], index identifiers of the state
 *  @param[in]  indexval      double [nindex], index values of the state
 *  @param[in]  colind        int32 [nnz], column of each entry
 *  @param[in]  rowptr        int64 [nrow + 1], where each row starts in colind and val, and the end
 *  @param[in]  val           double [nnz(, 2)], values; with mode 1 [count], with mode 2 [number of points]
 *  @param[in]  state         int32 [1], state number of the path; negative: taken from indexident
 *  @param[in]  filter_flags  int32 [1], see @ref filters; of the doubles, bit 128 reaches val alone
 *  @param[in]  filter_params int32 [2], their parameters
 *  @param[in]  value_size    int32 [1], see @ref value_size
 *  @param[in]  mode          int32 [1], 0: all values; 1: a block of them; 2: single values
 *  @param[in]  count         int64 [rank], mode 1: extents of the block; mode 2: [1], number of points
 *  @param[in]  start         int64 [rank], mode 1: first indices; mode 2: [points, rank], coordinates
 *  @param[out] status        int32 [1], 0 written; -8, -10 the group cannot be created, opened; -999 unknown mode
 *                            (attributes and index of a new block are written); otherwise see @ref storage_codes
 *  @param[in]  unused21      int32 by value, ignored
 *  @param[in]  unused22      int32 by value, ignored */
KOB_API void KOB1_WRITE_SPARSEMATRIX(const int64_t* group, const char* etyp, const int32_t* entid, const char* etypvar,
                                     const int32_t* nrow, const int64_t* nnz, const int32_t* nindex,
                                     const int32_t* indexident, const double* indexval, const int32_t* colind,
                                     const int64_t* rowptr, const double* val, const int32_t* state,
                                     const int32_t* filter_flags, const int32_t* filter_params,
                                     const int32_t* value_size, const int32_t* mode, const int64_t* count,
                                     const int64_t* start, int32_t* status, int32_t unused21, int32_t unused22);

/** Reads a sparse matrix of the older layout, whole or in pieces.
 *
 *  In pieces rank is 1, of complex values 2. The passes 3 and 4 read colind and rowptr, too, whole and with the extents
 *  that the caller gives.
 *  @param[in]     block         int64 [1], group of the block
 *  @param[in]     pass          int32 [1], 1: the scalar items; 2: everything; 3: a block of the values; 4: single
 *                               values
 *  @param[out]    etyp          text256 [1], entity type name
 *  @param[out]    entid         int32 [1], entity identifier
 *  @param[out]    etypvar       text256 [1], name of the matrix variable
 *  @param[in,out] nrow          int32 [1], number of rows; input in pass 3 and 4
 *  @param[in,out] nnz           int64 [1], number of stored entries; input in pass 3 and 4
 *  @param[out]    nindex        int32 [1], number of index values; 0: constant
 *  @param[out]    indexident    int32 [nindex], index identifiers of the state; pass 2
 *  @param[out]    indexval      double [nindex], index values of the state; pass 2
 *  @param[out]    colind        int32 [nnz], column of each entry; pass 2, 3 and 4
 *  @param[out]    rowptr        int64 [nrow + 1], where each row starts in colind and val, and the end; pass 2, 3 and 4
 *  @param[out]    val           double [nnz(, 2)], values; complex if the status is 10201; pass 3 [count], pass 4
 *                               [number of points]
 *  @param[out]    filter_flags  int32 [1], filters of "val", see @ref filters; pass 2, 3 and 4
 *  @param[out]    filter_params int32 [2], their parameters
 *  @param[in]     count         int64 [rank], pass 3: extents of the block; pass 4: [1], number of points
 *  @param[in]     start         int64 [rank], pass 3: first indices; pass 4: [points, rank], coordinates
 *  @param[out]    status        int32 [1], 10200 read, real; 10201 read, complex; -1 invalid handle, not a sparse
 *                               matrix block of this layout, or a part of it is missing; -3 another pass (nothing is
 *                               read); otherwise see @ref storage_codes
 *  @param[in]     unused19      int32 by value, ignored
 *  @param[in]     unused20      int32 by value, ignored */
KOB_API void KOB1_READ_SPARSEMATRIX(const int64_t* block, const int32_t* pass, char* etyp, int32_t* entid,
                                    char* etypvar, int32_t* nrow, int64_t* nnz, int32_t* nindex, int32_t* indexident,
                                    double* indexval, int32_t* colind, int64_t* rowptr, double* val,
                                    int32_t* filter_flags, int32_t* filter_params, const int64_t* count,
                                    const int64_t* start, int32_t* status, int32_t unused19, int32_t unused20);

/** Erases every result of a file of the older layout that belongs to a state after the given index, as
 *  KOB_ERASE_STATES() does in the current one.
 *
 *  The file's major version must be 1. The number of states of a series is the extent of its values.
 *  @param[in]  group   int64 [1], group of the open file
 *  @param[in]  nindex  int32 [1], number of index values
 *  @param[in]  index   int32 [nindex], identifiers of the last state to keep
 *  @param[in]  verbose int32 [1], 1: banner and information lines; 2: also the block table and every deletion
 *  @param[out] status  int32 [1], 0 done, or the file has no header or another major version (nothing is changed); -1
 *                      no blocks; -1000 a series without values; otherwise see @ref storage_codes and
 *                      KOB1_READ_INDEX(), KOB1_READ_MULTIENTITYRESULTS(), KOB1_WRITE_MULTIENTITYRESULTS2() */
KOB_API void KOB1_ERASE_STATES(const int64_t* group, const int32_t* nindex, const int32_t* index,
                               const int32_t* verbose, int32_t* status);

/** Merges the files of a distributed run in the older layout, one file per domain, into one file, as KOB_MERGE_DMP()
 *  does in the current one.
 *
 *  The file's major version should be 1; another one prints NOT OK, and the file is merged all the same: those of its
 *  blocks that are in the older layout. The kinds are those of KOB_MERGE_DMP() with these differences:
 *
 *  - variables: each path copied from the first file that holds it;
 *  - variable groups, identifiers: not there in this layout;
 *  - parts: pvtyp is a column like the others;
 *  - connectivities: the units are those of the first domain that has elements.
 *
 *  The domain number is defined by a variables block DMPComputeDomainNumber of rank 0 with the component "Domain", cid
 *  and comp 1, and no units. Connectivities name no entity type here: the domain numbers of elements are results of the
 *  type etypelem.
 *  @param[in]  domains        int64 [n], groups of the open domain files, in the order of the domains
 *  @param[in]  target         int64 [1], group of the open target file
 *  @param[in]  n              int32 [1], number of domain files
 *  @param[in]  filter_flags   int32 [1], filters of blocks that have none in the domain files, see @ref filters
 *  @param[in]  filter_params  int32 [2], their parameters
 *  @param[in]  nexp           int32 [1], entries of the exponent table, see KOB_READ_PARAM()
 *  @param[in]  exponent_names text256 [nexp], variable names, in any order; of equal names the first counts
 *  @param[in]  exponents      int32 [nexp], decimal scale factors
 *  @param[in]  options        int64 [1], sum of 1: verbose; 2: more verbose; 4: no domain numbers
 *  @param[in]  float_size     int32 [1], stored size of doubles in model blocks, see @ref value_size
 *  @param[out] status         int32 [1], 0 merged; 1 states with more than 5 index values; -1 blocks that cannot be
 *                             united, one that exists in the target, or one of which a part is missing; otherwise the
 *                             status of the first reader, writer or listing that failed, and the target holds what was
 *                             written until then */
KOB_API void KOB1_MERGE_DMP(const int64_t* domains, const int64_t* target, const int32_t* n,
                            const int32_t* filter_flags, const int32_t* filter_params, const int32_t* nexp,
                            const char* exponent_names, const int32_t* exponents, const int64_t* options,
                            const int32_t* float_size, int32_t* status);

/** Links the contents of several groups, of any files, into one group: KOB_CREATE_EXTLINKS() with the version number of
 *  the older layout in its banner.
 *  @param[in]  sources int64 [n], groups whose contents are shown
 *  @param[in]  target  int64 [1], group that shows them
 *  @param[in]  n       int32 [1], number of source groups
 *  @param[in]  name    char [256], group below the target for the links, made if missing; ends at a NUL, blanks at the
 *                      end do not count; used with option 1
 *  @param[in]  options int32 [1], bit 1: put the links into the group name
 *  @param[in]  verbose int32 [1], above 0: one line for each link
 *  @param[out] status  int32 [1], 0 done, even when single links failed; with option 1 what KOB_H5GOPEN() gives: the
 *                      number of groups created, or its error */
KOB_API void KOB1_CREATE_EXTLINKS(const int64_t* sources, const int64_t* target, const int32_t* n, const char* name,
                                  const int32_t* options, const int32_t* verbose, int32_t* status);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
