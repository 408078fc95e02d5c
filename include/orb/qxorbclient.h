/* SPDX-License-Identifier: MIT */
/**
 * @file
 * Calls functions on a remote compute server from C and C++.
 *
 * A program builds input arrays, hands them with a function's URL to feval(), and
 * receives output arrays or the error that the function raised. This page holds what is
 * true everywhere; each declaration below says the rest.
 *
 * @par Handles and ownership
 * An orbArray is a handle to one array. Every orbCreate... function, orbDuplicateArray(),
 * orbGetCell(), orbGetField(), orbGetFieldByNumber() and every output of feval() is a new
 * handle that the caller owns and releases with orbDestroyArray(). Pointers that an
 * accessor returns belong to the array: never free them. The one exception is the text of
 * orbArrayToString(), released with orbFree(). Handle arguments must not be null (only
 * what destroys accepts null); a null or destroyed handle is undefined behaviour.
 *
 * @par Shapes
 * Arrays are N-dimensional and column-major: of an m-by-n matrix, element (i, j) lies at
 * i + j*m. All indices, subscripts and field numbers count from zero. Dimensions, counts
 * and indices are size_t. Trailing dimensions of 1 are kept. Every array made here has at
 * least two dimensions; one that a server sent may have fewer, and may hold fewer
 * elements than its dimensions say. No function here reads past what is stored, but a
 * pointer such as orbGetPr() gives addresses only as many elements as there are: those
 * that the server sent; of two handles of one char or 16-bit array of which one was
 * resized, those that the other had; after a resize that failed, those from before it; of
 * a sparse array, orbGetNzmax() stored values, of which a server may have sent fewer too.
 *
 * @par Classes
 * The class of an array never changes. A sparse array has the class of its values, double
 * or logical. Numbers are complex when they carry an imaginary part; an array without
 * elements is created real.
 *
 * @par Where values live
 * Most classes hand out a pointer into the array's own storage: what is written through
 * it is the array's value at once. Char and 16-bit integer arrays hand out a native
 * buffer, and struct and cell arrays keep a list of their elements; both reach the
 * storage that other handles of the same array see, and that travels to a server, at
 * three moments only: when feval() takes the array as an input, when it is stored with
 * orbSetCell(), orbSetField() or orbSetFieldByNumber(), and when it is duplicated.
 *
 * @par Elements of structs and cells
 * Storing a value does not copy it: the parent refers to the value's storage, and the
 * caller still owns and destroys the value's handle. Reading an element gives a handle
 * that refers to the same storage. A change made through such a handle is in the parent
 * at once for the classes whose values live in the array's storage, and for char, 16-bit,
 * struct and cell elements after that handle's next write-back: store it again, or pass
 * it to feval() before the parent. A handle takes its view of the elements when it is
 * made: a grandchild changed through a handle of a handle reaches the root once each
 * level has been stored again.
 *
 * Extents and field names always live in the storage, while the values of such elements
 * follow at the write-back: in between, parents and other handles see new names and
 * extents with old values. So after orbAddField(), orbRemoveField() or a resize store an
 * element again before anything else is done with its parent.
 *
 * Each access to an element goes through all extents of its parent and, of a struct, its
 * field names, and a handle to an element copies what lies inside that. A server may send
 * very many extents, names and levels: before reading in a loop what is not known to be
 * sound, ask for orbGetNumberOfDimensions() and orbGetNumberOfFields().
 *
 * @par Depth
 * A reply may nest cells and structs 49 deep; what lies deeper is not read, and the call
 * may succeed with what was read before it. A program may build deeper arrays: 1,000
 * levels are created, duplicated, sent and destroyed on an 8 MiB stack, each level
 * costing well under 2 KiB of it.
 *
 * @par Text
 * Char arrays hold UTF-16 code units. orbCreateString() and orbGetString() move bytes,
 * without any decoding; orbArrayToString() gives UTF-8. Function URLs, file names and
 * error texts are bytes as given. Field names are bytes up to their NUL; a server accepts
 * UTF-8 only.
 *
 * @par Errors
 * The operations of the runtime table throw nothing; they return an orbStatus, and the
 * reason is read with getLastErrorInfo(). The array functions answer a wrong class or an
 * index out of range with null, -1, 1 or no effect, as each says. A few let a C++
 * exception out, always one derived from std::exception; each names it under
 * "Exceptions", and nothing that is not named there leaves. Those are:
 *  - all orbCreate... functions, orbDuplicateArray(), orbSetM(), orbSetN() and
 *    orbSetNzmax(): std::bad_alloc and std::length_error when memory ends, and
 *    boost::numeric::positive_overflow, "bad numeric conversion: positive overflow", for
 *    a count above 2147483647;
 *  - orbGetCell(), orbGetField(), orbGetFieldByNumber(): std::bad_alloc, and
 *    std::invalid_argument, "dispatch_on_QXType", for an element of a type that a client
 *    cannot hold; a server may send such an element inside a cell or struct;
 *  - orbSetCell(), orbSetField(), orbSetFieldByNumber(): std::bad_alloc, and
 *    boost::numeric::positive_overflow for a struct or cell of more than 2147483647
 *    elements;
 *  - orbGetPr(), orbGetPi(), orbGetData(), orbGetImagData(), orbGetLogicals(),
 *    orbGetScalar(), orbGetIr() and orbGetJc(): std::bad_alloc, where an array that holds
 *    no elements yet is given its empty storage;
 *  - orbRemoveField(): std::bad_alloc.
 *
 * A C program cannot catch them; the C++ runtime then ends it with a message.
 *
 * @par Threads and processes
 * The library takes no locks and starts no threads; libcurl starts one while it looks up
 * a host name. orbInitializeEx() and orbTerminate()
 * are called from one thread while no other uses the library or libcurl. The table may be
 * used from every thread. A context serves one thread at a time; separate contexts may be
 * used at the same time. An array, and arrays that share storage with it, must not be
 * used from two threads at once, except that handles which share storage may be destroyed
 * on different threads.
 *
 * A call never ends the process by SIGPIPE: libcurl ignores the signal while it needs to,
 * for the whole process. Where several threads do so at once the switches interleave, so
 * a program with threads ignores SIGPIPE itself before its first call.
 *
 * After a fork() the child makes contexts of its own. It must neither use nor destroy
 * those it inherited, whose connections the parent goes on using, and leaves by exec or
 * _exit().
 *
 * libcurl honours the environment at every call: with `http_proxy` set, for TLS
 * `https_proxy`, for either `all_proxy`, calls go through that proxy, also those to this
 * machine, unless `no_proxy` lists the host; all but the first count in capitals too.
 * With `SSLKEYLOGFILE` set at initialisation, libcurl appends the secrets of TLS
 * connections to that file.
 *
 * Calls of a context share its connections, which are kept open. Over TLS, each new
 * connection makes the whole handshake: sessions are not resumed.
 */
#ifndef ORB_QXORBCLIENT_H_
#define ORB_QXORBCLIENT_H_

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <uchar.h>

#define ORB_API __attribute__((visibility("default")))

#ifdef __cplusplus
#define ORB_ENUM(name, type) enum name : type
extern "C" {
#else
/* As wide as in C++; of an enumeration without -1 the compiler may choose the sign. */
#define ORB_ENUM(name, type) enum name
#endif

/**
 * @defgroup types Handles, classes and errors
 * @{
 */

/** Handle to one array; what lies behind it is the library's own. */
typedef struct orbArrayHandle* orbArray;

/** Settings for contexts; see createConfig(). */
typedef struct orbClientConfig orbClientConfig;

/** A connection to servers, and its last error; see createContext(). */
typedef struct orbClientContext orbClientContext;

/**
 * The class of an array. 32 bits wide; the order is the wire's, unsigned before signed.
 */
typedef ORB_ENUM(orbClassID, int32_t){
    orbUNKNOWN_CLASS = -1, /**< No class; no array has it. */
    orbUINT8_CLASS = 0,    orbINT8_CLASS = 1,   orbUINT16_CLASS = 2,   orbINT16_CLASS = 3,
    orbUINT32_CLASS = 4,   orbINT32_CLASS = 5,  orbUINT64_CLASS = 6,   orbINT64_CLASS = 7,
    orbSINGLE_CLASS = 8,   orbDOUBLE_CLASS = 9, orbLOGICAL_CLASS = 10, orbCHAR_CLASS = 11,
    orbSTRUCT_CLASS = 12,  orbCELL_CLASS = 13,
} orbClassID;

/**
 * Whether a new array is complex. Only the value 1 means complex; any other means real.
 */
typedef ORB_ENUM(orbComplexity, int32_t){orbREAL = 0, orbCOMPLEX = 1} orbComplexity;

/** The result of a table operation that can fail. */
typedef ORB_ENUM(orbStatus, uint32_t){ORB_OK = 0, ORB_FAILURE = 1} orbStatus;

/** What kind of failure an orbErrorInfo describes. */
typedef ORB_ENUM(orbErrorType, int32_t){
    ORB_HTTP_ERROR = 0,   /**< The server answered with a status other than 200. */
    ORB_KALDEX_ERROR = 1, /**< The function on the server raised an error. */
    ORB_GENERIC_ERROR = 2 /**< Everything else: transport, size limit, reply, memory. */
} orbErrorType;

/** One frame of the stack of a server-side error. */
typedef struct orbStackFrame {
  const char* file; /**< "" when the server sent none. */
  const char* name; /**< The function; "" when the server sent none. */
  int32_t line;     /**< 0 when the server sent none. */
} orbStackFrame;

/**
 * Why a call failed; filled by getLastErrorInfo(). Every text is NUL-terminated, never
 * null, and belongs to the context: it stays valid until the next feval() on that context
 * that fails, or destroyContext(). Only the array `stack` belongs to the record.
 */
typedef struct orbErrorInfo {
  /** Says which member of the union is filled. */
  orbErrorType type;
  /**
   * "A non-200 HTTP response was received", "Error was thrown while executing KALDEX
   * code" or "A generic error was thrown"; "" for a context that never failed.
   */
  const char* message;
  union {
    /** For ORB_HTTP_ERROR. */
    struct {
      /** The HTTP status. */
      uint32_t responseCode;
      /**
       * The reason phrase of the first status line that came, with its line ending; ""
       * when that has none. The first line may be an interim reply's or a TLS proxy's.
       */
      const char* responseMessage;
    } http;
    /** For ORB_KALDEX_ERROR. The server's formatted report is not handed out. */
    struct {
      /** "" when the server sent none, as `identifier`. */
      const char* message;
      const char* identifier;
      /**
       * The stackDepth frames in the order sent, which is the server's choice. Null when
       * there are none, and when there was no memory for them: test before use.
       */
      orbStackFrame* stack;
      uint64_t stackDepth;
    } kaldex;
    /** For ORB_GENERIC_ERROR. */
    struct {
      /** The failure's own text. */
      const char* message;
    } generic;
  } details;
} orbErrorInfo;

/** @} */

/**
 * @defgroup runtime Calling a server
 * @code
 * orbClientRuntime* runtime = orbInitializeEx(ORB_CLIENT_1_1);
 * orbClientConfig* config = NULL;
 * orbClientContext* context = NULL;
 * if (runtime->createConfig(&config) == ORB_OK &&
 *     runtime->createContext(&context, config) == ORB_OK) {
 *   const orbArray input = orbCreateDoubleScalar(2.0);
 *   orbArray output = NULL;
 *   if (runtime->feval(context, url, 1, &output, 1, &input) == ORB_OK) { ... }
 * }
 * @endcode
 * @{
 */

/** Table version 1.0: the members up to feval. */
#define ORB_CLIENT_1_0 0x10000u
/** Table version 1.1: all members; adds the TLS settings. */
#define ORB_CLIENT_1_1 0x10001u

/**
 * Every operation that is not about arrays. Made by orbInitializeEx(), owned by the
 * library, read-only, valid until orbTerminate(). Later versions add members at the end
 * only.
 */
typedef struct orbClientRuntime {
  /**
   * Makes a configuration with the defaults: time-out 120 s, response size limit 67108864
   * bytes (64 MiB), no files, both verifications on.
   *
   * @param out  Receives the configuration, owned by the caller: release it with
   *             destroyConfig(). It is written before the configuration is complete:
   *             after ORB_FAILURE, which memory running out gives, destroy what `out`
   *             holds and use it for nothing else. Set it to null beforehand: it stays as
   *             it was when not even the handle could be made.
   */
  orbStatus (*createConfig)(orbClientConfig** out);

  /** Releases a configuration; null is ignored. Contexts made from it live on. */
  void (*destroyConfig)(orbClientConfig* config);

  /**
   * The longest time that one call may take, in seconds, connecting included; 0 is no
   * limit. Only the look-up of a host name is waited for, however long the system takes.
   * The transport counts up to 2147483 s (24 days): larger values are kept and act
   * as that one. A time-out, like every setting, holds for the contexts created
   * afterwards.
   */
  void (*setTimeoutSec)(orbClientConfig* config, uint64_t timeoutSec);
  uint64_t (*getTimeoutSec)(orbClientConfig* config);

  /**
   * The largest reply accepted, in bytes. A reply with a body whose Content-Length line
   * announces more fails the call before any of it is kept; of all header lines in which
   * "Content-Length" stands anywhere, the last counts. A reply that announces nothing, or
   * in other letters (content-length), is received whole, and kept and read up to the
   * limit: the call may then succeed with an array that holds fewer elements than its
   * dimensions say, or, when no outputs were wanted, although the function raised an
   * error. A limit above 2147483647 lets nothing be read: every reply is then one without
   * outputs and without an error.
   */
  void (*setResponseSizeLimit)(orbClientConfig* config, uint32_t limitBytes);
  uint32_t (*getResponseSizeLimit)(orbClientConfig* config);

  /**
   * Makes a context from a copy of a configuration, which may be changed or destroyed
   * afterwards without effect on the context. A context keeps its connections alive
   * between calls, and the memory of its last request and reply for the next, each up to
   * 64 MiB; it gives back what is far larger than a call needed. An error that a function
   * raised is kept, however large, until the next call that fails.
   *
   * @param out  Receives the context, owned by the caller: release it with
   *             destroyContext(). It is written before the context is complete: after
   *             ORB_FAILURE destroy what `out` holds. Its getLastErrorInfo() tells the
   *             reason, and feval() on it fails. Set it to null beforehand: it stays as
   *             it was when not even the context could be made.
   * @return ORB_FAILURE when memory ends or libcurl refuses a setting.
   */
  orbStatus (*createContext)(orbClientContext** out, const orbClientConfig* config);

  /**
   * Releases a context and closes its connections; null is ignored. Arrays that it
   * returned live on.
   */
  void (*destroyContext)(orbClientContext* context);

  /**
   * Tells why the last call that failed on this context failed. A call that succeeds
   * changes nothing here. A context that never failed reports ORB_HTTP_ERROR with status
   * 0 and empty texts.
   *
   * @param info  Filled; release it with destroyLastErrorInfo(). A second call fills a
   *              record of its own.
   */
  void (*getLastErrorInfo)(orbClientContext* context, orbErrorInfo* info);

  /** Releases the frames of a record and sets `stack` to null; `stackDepth` stays. */
  void (*destroyLastErrorInfo)(orbErrorInfo* info);

  /**
   * Calls a function on a server: one HTTP POST to `url`.
   *
   * The call fails, with the reason in getLastErrorInfo(), for a status other than 200;
   * for an error that the function raised; and, as a generic error, for a transport
   * failure, a null URL, a reply announced larger than the response size limit, with a
   * length that is no number, or in a Transfer-Encoding that is neither chunked nor
   * identity, a request or reply above 2147483647 bytes, a number of outputs other than
   * nlhs, an output of a type that a client cannot hold ("dispatch_on_QXType"), and
   * memory running out. A context goes on working after every failure.
   *
   * When a kept-alive connection ends before the first line of the reply is complete,
   * libcurl sends the POST again on a new one: a function may then run twice for one
   * call. An end by a reset may fail the call instead. On a new connection nothing is
   * sent again.
   *
   * A reply that is damaged or longer than the limit may make the message library write a
   * line to stderr.
   *
   * @param url  Address of the function, given to libcurl as it is. libcurl takes out dot
   *             segments and the fragment, and sends a user name and password as an
   *             Authorization line. A missing scheme is http, unless the host's name
   *             begins with that of another, as in ftp.example.com.
   * @param nlhs  Number of outputs wanted.
   * @param lhs  Receives nlhs arrays, owned by the caller. Filled from the last to the
   *             first; a call that fails leaves the slots alone, with one exception: when
   *             an output cannot be turned into an array, those after it are already
   *             stored and are the caller's to destroy. So set all slots to null first.
   *             May be null when nlhs is 0.
   * @param nrhs  Number of inputs; 0 or above 2147483647 sends none.
   * @param rhs  The inputs, which stay the caller's and keep their values. The same array
   *             may stand twice. Null sends none.
   */
  orbStatus (*feval)(orbClientContext* context, const char* url, uint32_t nlhs,
                     orbArray* lhs, uint32_t nrhs, const orbArray* rhs);

  /*
   * Since version 1.1; null in a table made for 1.0. Setters copy the text; null reads as
   * "", which turns the setting off. When memory ends the setting stays as it was.
   * Getters give "" for what was never set; their text belongs to the configuration and
   * stays valid until the same setting is set again or the configuration is destroyed.
   * Files are read by libcurl when a call connects; a file that cannot be read fails that
   * call.
   */

  /** PEM file with the certificate that the client shows to the server. */
  void (*setClientCertFile)(orbClientConfig* config, const char* file);
  const char* (*getClientCertFile)(orbClientConfig* config);

  /** PEM file with the private key of that certificate. */
  void (*setClientPrivateKeyFile)(orbClientConfig* config, const char* file);
  const char* (*getClientPrivateKeyFile)(orbClientConfig* config);

  /**
   * Pass phrase of the private key. Without one for a key that needs it, OpenSSL asks on
   * the terminal, where there is one.
   */
  void (*setClientPrivateKeyPassword)(orbClientConfig* config, const char* password);
  const char* (*getClientPrivateKeyPassword)(orbClientConfig* config);

  /**
   * PEM file with the CA certificates that server certificates are checked against, in
   * place of the system's file of them. The system's directory of CA certificates, where
   * libcurl was built with one (Debian: /etc/ssl/certs), stays trusted beside it.
   */
  void (*setServerCertFile)(orbClientConfig* config, const char* file);
  const char* (*getServerCertFile)(orbClientConfig* config);

  /** PEM file with certificate revocation lists, one of every CA in a server's chain. */
  void (*setCRLFile)(orbClientConfig* config, const char* file);
  const char* (*getCRLFile)(orbClientConfig* config);

  /** Whether the host name must match the server's certificate. */
  void (*setVerifyHost)(orbClientConfig* config, bool verify);
  bool (*getVerifyHost)(orbClientConfig* config);

  /** Whether the server's certificate must come from a known CA. */
  void (*setVerifyPeer)(orbClientConfig* config, bool verify);
  bool (*getVerifyPeer)(orbClientConfig* config);
} orbClientRuntime;

/**
 * Initialises the library, libcurl included, and gives the table.
 *
 * @param version  ORB_CLIENT_1_0 or ORB_CLIENT_1_1. While a table exists it is returned
 *                 whatever the version asked for: the first caller's version wins.
 * @return The table, owned by the library and valid until orbTerminate(); null on
 *         failure, with the reason in orbGetInitializationErrorMessage(): "Invalid
 *         version number.", "Global initialization of QXHttpClient failed", or, when
 *         memory ends, "std::bad_alloc", which leaves libcurl initialised.
 */
ORB_API orbClientRuntime* orbInitializeEx(uint32_t version);

/** Is orbInitializeEx(ORB_CLIENT_1_0). */
ORB_API orbClientRuntime* orbInitialize(void);

/**
 * Frees the table and cleans up libcurl. Does nothing without a table. Destroy contexts
 * before; arrays live on. The library may be initialised again. Until it is called the
 * table lasts, for exit handlers too.
 */
ORB_API void orbTerminate(void);

/**
 * @return The text of the last initialisation that failed, also after a later one that
 *         succeeded; "" when none failed since the library was loaded or terminated.
 *         Never null; valid until the next initialisation that fails or orbTerminate().
 */
ORB_API const char* orbGetInitializationErrorMessage(void);

/** @} */

/**
 * @defgroup create Creating arrays
 * Each function returns a new array, owned by the caller: release it with
 * orbDestroyArray(). Elements start as zero, false, NUL or empty. An array without
 * elements is real, whatever was asked for.
 * @code
 * orbArray m = orbCreateDoubleMatrix(2, 3, orbREAL);
 * orbGetPr(m)[0 + 1 * 2] = 4.5;  // row 0, column 1
 * orbDestroyArray(m);
 * @endcode
 *
 * @par Exceptions
 *      Every function here may throw std::bad_alloc, or std::length_error for a size that
 *      no memory could hold, and boost::numeric::positive_overflow, "bad numeric
 *      conversion: positive overflow", for more than 2147483647 elements (8-bit integer,
 *      struct, cell and sparse arrays have no such limit), for more extents than that
 *      and, where the two extents m and n are given, for either above 2147483647, of a
 *      sparse array for an n of 2147483647 too. Nothing is left behind.
 * @{
 */

/**
 * Creates a numeric array.
 *
 * @param ndim  Number of extents in `dims`; 0 gives a 0-by-0 array, 1 a column
 *              dims[0]-by-1.
 * @param dims  The extents; not read when ndim is 0.
 * @param classid  orbUINT8_CLASS to orbDOUBLE_CLASS.
 * @param flag  orbCOMPLEX for an imaginary part.
 * @return The array; null when classid is not numeric.
 */
ORB_API orbArray orbCreateNumericArray(size_t ndim, const size_t* dims,
                                       orbClassID classid, orbComplexity flag);

/** Creates an m-by-n numeric array; null when classid is not numeric. */
ORB_API orbArray orbCreateNumericMatrix(size_t m, size_t n, orbClassID classid,
                                        orbComplexity flag);

/** Creates an m-by-n double array. */
ORB_API orbArray orbCreateDoubleMatrix(size_t m, size_t n, orbComplexity flag);

/** Creates a real 1-by-1 double array that holds `value`. */
ORB_API orbArray orbCreateDoubleScalar(double value);

/** Creates a logical array; `ndim` and `dims` as for orbCreateNumericArray(). */
ORB_API orbArray orbCreateLogicalArray(size_t ndim, const size_t* dims);

/** Creates an m-by-n logical array. */
ORB_API orbArray orbCreateLogicalMatrix(size_t m, size_t n);

/** Creates a 1-by-1 logical array that holds `value`. */
ORB_API orbArray orbCreateLogicalScalar(bool value);

/** Creates a char array; `ndim` and `dims` as for orbCreateNumericArray(). */
ORB_API orbArray orbCreateCharArray(size_t ndim, const size_t* dims);

/**
 * Creates a char row of the bytes of `str`, 1-by-strlen(str), or 0-by-0 for "".
 *
 * Each byte becomes one code unit by sign extension: 0x41 becomes 0x0041, 0xE9 becomes
 * 0xFFE9. UTF-8 is not decoded; write code units through orbGetChars() for text beyond
 * ASCII.
 *
 * @param str  NUL-terminated, not null.
 */
ORB_API orbArray orbCreateString(const char* str);

/**
 * Creates an m-by-w char array with string i in row i, w being the length of the longest.
 * Shorter rows are filled with NUL. Bytes become code units as in orbCreateString().
 *
 * @param str  m NUL-terminated strings; not read when m is 0.
 */
ORB_API orbArray orbCreateCharMatrixFromStrings(size_t m, const char** str);

/**
 * Creates a cell array of empty cells, each reading as a 0-by-0 double array; `ndim` and
 * `dims` as for orbCreateNumericArray().
 */
ORB_API orbArray orbCreateCellArray(size_t ndim, const size_t* dims);

/** Creates an m-by-n cell array of empty cells. */
ORB_API orbArray orbCreateCellMatrix(size_t m, size_t n);

/**
 * Creates a struct array whose every field reads as a 0-by-0 double array.
 *
 * @param ndim  As for orbCreateNumericArray(), and so `dims`.
 * @param nfields  Number of field names; 0 or less gives no fields.
 * @param fieldnames  The names, taken byte for byte, unchecked: a name given twice makes
 *                    a second field that only orbGetFieldNameByNumber() and
 *                    orbRemoveField() reach. Not read when nfields is 0 or less.
 */
ORB_API orbArray orbCreateStructArray(size_t ndim, const size_t* dims, int nfields,
                                      const char** fieldnames);

/** Creates an m-by-n struct array; see orbCreateStructArray(). */
ORB_API orbArray orbCreateStructMatrix(size_t m, size_t n, int nfields,
                                       const char** fieldnames);

/**
 * Creates an m-by-n sparse double array in compressed-column form, without stored values:
 * all of its `nzmax` row indices and values and its n + 1 column starts are 0.
 *
 * @param nzmax  Capacity for stored values, at most 2147483647; 0 is kept as 0.
 * @param flag  orbCOMPLEX gives the values an imaginary part. orbIsComplex() is then true
 *              when m*n is not 0. With an nzmax of 0 there is none, and orbSetNzmax()
 *              makes none.
 */
ORB_API orbArray orbCreateSparse(size_t m, size_t n, size_t nzmax, orbComplexity flag);

/** Creates an m-by-n sparse logical array; see orbCreateSparse(). */
ORB_API orbArray orbCreateSparseLogicalMatrix(size_t m, size_t n, size_t nzmax);

/** @} */

/**
 * @defgroup handle Handles and classes
 * @code
 * orbArray copy = orbDuplicateArray(a);
 * printf("%s of %zu-byte elements\n", orbGetClassName(copy), orbGetElementSize(copy));
 * orbDestroyArray(copy);
 * @endcode
 * @{
 */

/** Releases a handle; null is ignored. Elements that other handles refer to live on. */
ORB_API void orbDestroyArray(orbArray a);

/**
 * @return A deep copy that shares nothing with `a`, owned by the caller.
 * @par Exceptions
 *      std::bad_alloc, boost::numeric::positive_overflow for a struct or cell of more
 *      than 2147483647 elements. Nothing is left behind.
 */
ORB_API orbArray orbDuplicateArray(const orbArray a);

/** Releases the text of orbArrayToString(); null is ignored. Not for arrays. */
ORB_API void orbFree(void* p);

/** @return The class; for a sparse array that of its values. */
ORB_API orbClassID orbGetClassID(const orbArray a);

/**
 * @return The class as text ("double"), static: "uint8", "int8", "uint16", "int16",
 *         "uint32", "int32", "uint64", "int64", "single", "double", "logical", "char",
 *         "struct", "cell".
 */
ORB_API const char* orbGetClassName(const orbArray a);

/**
 * @return Whether the array is complex, as the handle found it when it was made: as it
 *         was asked for, where the array was created; else, for a copy, an element of a
 *         struct or cell and what was received, whether an imaginary part is stored.
 *         Resizing does not change it: a complex array resized to no elements stays
 *         complex for the handle, though no imaginary values are stored in it or sent
 *         from then on.
 */
ORB_API bool orbIsComplex(const orbArray a);

/**
 * @return Bytes of one element of the class: 1, 2, 4 or 8; 2 for char, 1 for logical, 8
 *         for struct and cell. For a sparse array, of one stored value.
 */
ORB_API size_t orbGetElementSize(const orbArray a);

/** @} */

/**
 * @defgroup data Dimensions and data
 * @code
 * double* x = orbGetPr(a);
 * for (size_t i = 0, n = orbGetNumberOfElements(a); i < n; ++i) x[i] *= 2;
 * @endcode
 *
 * @par Exceptions
 *      The functions that give a data pointer may throw std::bad_alloc; the others throw
 *      what each says.
 * @{
 */

/** @return The number of dimensions. */
ORB_API size_t orbGetNumberOfDimensions(const orbArray a);

/**
 * @return The extents, orbGetNumberOfDimensions() of them, inside the array; valid until
 *         they are changed or the array is destroyed. Null when there are none.
 */
ORB_API const size_t* orbGetDimensions(const orbArray a);

/** @return The product of the extents, modulo 2 to the 64th; 0 when there are none. */
ORB_API size_t orbGetNumberOfElements(const orbArray a);

/**
 * @param nsubs  Number of subscripts in `subs`. Those beyond the number of dimensions are
 *               not looked at.
 * @return The linear index of the element at the zero-based subscripts, none of which is
 *         compared with its extent; 0 when nsubs is 0.
 */
ORB_API size_t orbCalcSingleSubscript(const orbArray a, size_t nsubs, const size_t* subs);

/** @return The first extent; 0 when there is none. */
ORB_API size_t orbGetM(const orbArray a);

/** @return The second extent only, also of an array with more; 0 when there is none. */
ORB_API size_t orbGetN(const orbArray a);

/**
 * Changes the first extent and the number of elements with it: elements keep their linear
 * index, new ones are zero, false, NUL or empty. Pointers into the array become invalid.
 * No effect when there is no such extent. Of a sparse array only the column starts
 * follow.
 *
 * @par Exceptions
 *      boost::numeric::positive_overflow, "bad numeric conversion: positive overflow",
 *      for more than 2147483647 elements, struct fields counted; std::bad_alloc or
 *      std::length_error. Of a sparse array, for more than 2147483646 columns. The extent
 *      is then changed, and the elements are not, or, when memory ends, partly.
 */
ORB_API void orbSetM(orbArray a, size_t m);

/** Changes the second extent only, as orbSetM() does the first. */
ORB_API void orbSetN(orbArray a, size_t n);

/**
 * Replaces all extents and changes the number of elements with them, as orbSetM() does.
 *
 * @param dims  The new extents; may be the array's own, from orbGetDimensions().
 * @param ndim  Their number; 1 gives dims[0]-by-1.
 * @return 0; 1 when ndim is 0, which changes nothing; when ndim is above 2147483647, with
 *         the extents gone and the elements as they were; when orbSetM() would throw
 *         positive_overflow, with the extents replaced and the elements as they were;
 *         when memory ends, with the extents replaced or gone and the elements as they
 *         were or partly resized.
 */
ORB_API int orbSetDimensions(orbArray a, const size_t* dims, size_t ndim);

/**
 * @return The first element's real part as a double; 0.0 when there is none, and for
 *         struct and cell arrays. For a sparse array, the first stored value.
 */
ORB_API double orbGetScalar(const orbArray a);

/**
 * @return The elements of a double array, or the stored values of a sparse double one;
 *         null for other classes, and when there are none. Valid until the array is
 *         resized, by orbSetNzmax() too, or destroyed.
 */
ORB_API double* orbGetPr(const orbArray a);

/**
 * @return The imaginary parts, as orbGetPr(); null for a real array, and for a complex
 *         one that holds none: orbIsComplex() and orbCreateSparse() say which. A sparse
 *         array created complex without elements has them, though orbIsComplex() is
 *         false.
 */
ORB_API double* orbGetPi(const orbArray a);

/**
 * @return The elements of a numeric array in its class's C type (uint8_t ... double), or
 *         the stored values of a sparse double one; else as orbGetPr().
 */
ORB_API void* orbGetData(const orbArray a);

/**
 * @return The imaginary parts, as orbGetData() and orbGetPi(). Where a complex 16-bit
 *         array was resized to no elements and back, what is written to them is not kept.
 */
ORB_API void* orbGetImagData(const orbArray a);

/**
 * @return The UTF-16 code units of a char array; null for other classes, and when there
 *         are none. Not NUL-terminated. Valid until the array is resized or destroyed.
 */
ORB_API char16_t* orbGetChars(const orbArray a);

/**
 * @return The elements of a logical array, or the stored values of a sparse logical one;
 *         null for other classes, and when there are none. Valid as orbGetPr().
 */
ORB_API bool* orbGetLogicals(const orbArray a);

/**
 * Copies a char array into a C string, the low byte of each code unit. Units that the
 * dimensions promise and the array does not hold read as NUL.
 *
 * @param buf  Receives at most buflen - 1 bytes and a NUL; untouched when `a` is not a
 *             char array or buflen is 0.
 * @param buflen  Size of `buf` in bytes.
 * @return 0 when all of it fitted, and when buflen is 0; 1 when it did not, and for other
 *         classes.
 */
ORB_API int orbGetString(const orbArray a, char* buf, size_t buflen);

/**
 * Converts a char array from UTF-16 to UTF-8. A surrogate is combined with whatever unit
 * follows it. NUL units stay, so the text may hold NULs inside.
 *
 * @return NUL-terminated text, owned by the caller: release it with orbFree(). Null for
 *         other classes, for an array without elements, when a surrogate has no unit
 *         behind it, and when memory ends.
 */
ORB_API char* orbArrayToString(const orbArray a);

/** @} */

/**
 * @defgroup containers Structs, cells and sparse arrays
 * @code
 * const char* fields[] = {"name", "value"};
 * orbArray s = orbCreateStructMatrix(1, 1, 2, fields);
 * orbArray v = orbCreateDoubleScalar(3.5);
 * orbSetField(s, 0, "value", v);
 * orbDestroyArray(v);  // s keeps the value
 * @endcode
 * @{
 */

/** @return The number of fields; 0 when `a` is not a struct. */
ORB_API int orbGetNumberOfFields(const orbArray a);

/**
 * @return The name of field n, inside the array, valid until its fields change; null when
 *         `a` is not a struct or has no field n.
 */
ORB_API const char* orbGetFieldNameByNumber(const orbArray a, int n);

/**
 * @return The number of the first field with exactly this name; -1 when there is none,
 *         `name` is null or `a` is not a struct.
 */
ORB_API int orbGetFieldNumber(const orbArray a, const char* name);

/**
 * Gives a handle to the value of a field in element `index`. A value never set becomes,
 * and reads as, a 0-by-0 double array.
 *
 * @return A handle that shares the value with the struct, owned by the caller. Null when
 *         `a` is not a struct, has no such field, or no such element.
 * @par Exceptions
 *      std::invalid_argument, "dispatch_on_QXType", when a server sent a value of a type
 *      that a client cannot hold; std::bad_alloc.
 */
ORB_API orbArray orbGetField(const orbArray a, size_t index, const char* name);

/**
 * As orbGetField() with the name of field n: of two fields with one name, the first is
 * reached.
 */
ORB_API orbArray orbGetFieldByNumber(const orbArray a, size_t index, int n);

/**
 * Writes back `value` and makes the struct refer to it. `value` stays the caller's, to be
 * destroyed. An array stored into itself is stored as a copy of what it was. No effect
 * when `a` is not a struct, has no such field, or no such element.
 *
 * @par Exceptions
 *      std::bad_alloc, boost::numeric::positive_overflow when `value` is a struct or cell
 *      of more than 2147483647 elements. `a` is then unchanged.
 */
ORB_API void orbSetField(orbArray a, size_t index, const char* name, orbArray value);

/**
 * As orbSetField() with the name of field n: of two fields with one name, the first is
 * reached.
 */
ORB_API void orbSetFieldByNumber(orbArray a, size_t index, int n, orbArray value);

/**
 * Adds a field behind the others; in every element it reads as a 0-by-0 double array.
 *
 * @return The number of the field; of the one that exists when there is one with this
 *         name. -1, with the struct unchanged, when `name` is null, `a` is not a struct,
 *         memory ends, the values would be more than 2147483647, or `a` has elements and
 *         does not hold fields times elements values: received so, changed through
 *         another handle, or left so by a resize that failed.
 */
ORB_API int orbAddField(orbArray a, const char* name);

/**
 * Removes field n with its values; no effect when `a` is not a struct or has no field n.
 *
 * @par Exceptions
 *      std::bad_alloc, for a received struct. The fields are then unchanged.
 */
ORB_API void orbRemoveField(orbArray a, int n);

/**
 * Gives a handle to a cell. A cell never set becomes, and reads as, a 0-by-0 double
 * array.
 *
 * @return A handle that shares the value with the cell array, owned by the caller. Null
 *         when `a` is not a cell array or has no such element.
 * @par Exceptions
 *      std::invalid_argument, "dispatch_on_QXType", when a server sent a value of a type
 *      that a client cannot hold; std::bad_alloc.
 */
ORB_API orbArray orbGetCell(const orbArray a, size_t index);

/**
 * Writes back `value` and makes the cell refer to it, as orbSetField() does. No effect
 * when `a` is not a cell array or has no such element.
 *
 * @par Exceptions
 *      As orbSetField().
 */
ORB_API void orbSetCell(orbArray a, size_t index, orbArray value);

/**
 * @return The row index of each stored value, orbGetNzmax() of them, inside the array;
 *         null when `a` is not sparse or there are none. Valid until orbSetNzmax() or the
 *         array's end.
 */
ORB_API size_t* orbGetIr(const orbArray a);

/**
 * @return The column starts, one more than there are columns, inside the array; null when
 *         `a` is not sparse or there are none. Valid until the array is resized or
 *         destroyed.
 */
ORB_API size_t* orbGetJc(const orbArray a);

/** @return The capacity for stored values; SIZE_MAX when `a` is not sparse. */
ORB_API size_t orbGetNzmax(const orbArray a);

/**
 * Changes the capacity for stored values: new row indices and values are 0, surplus ones
 * are cut off. Pointers to both become invalid. The column starts stay as they are; keep
 * them consistent. No effect when `a` is not sparse or nzmax is above its number of
 * elements. 0 is taken as 1, also where the array has no elements.
 *
 * @par Exceptions
 *      boost::numeric::positive_overflow, "bad numeric conversion: positive overflow",
 *      for an nzmax above 2147483647; std::bad_alloc. The capacity is then unchanged.
 */
ORB_API void orbSetNzmax(orbArray a, size_t nzmax);

/** @} */

/**
 * @defgroup predicates Predicates
 * @code
 * if (orbIsNumeric(a) && !orbIsSparse(a)) ...
 * @endcode
 * @{
 */

/** @return Whether the class is double; true also for sparse double. */
ORB_API bool orbIsDouble(const orbArray a);
ORB_API bool orbIsSingle(const orbArray a);
ORB_API bool orbIsInt8(const orbArray a);
ORB_API bool orbIsUint8(const orbArray a);
ORB_API bool orbIsInt16(const orbArray a);
ORB_API bool orbIsUint16(const orbArray a);
ORB_API bool orbIsInt32(const orbArray a);
ORB_API bool orbIsUint32(const orbArray a);
ORB_API bool orbIsInt64(const orbArray a);
ORB_API bool orbIsUint64(const orbArray a);

/**
 * @return Whether the class is one of the ten numeric ones; true also for sparse double.
 */
ORB_API bool orbIsNumeric(const orbArray a);

/** @return Whether the class is logical; true also for sparse logical. */
ORB_API bool orbIsLogical(const orbArray a);
ORB_API bool orbIsChar(const orbArray a);
ORB_API bool orbIsStruct(const orbArray a);
ORB_API bool orbIsCell(const orbArray a);

/** @return Whether the array is stored sparse, whatever its values. */
ORB_API bool orbIsSparse(const orbArray a);

/**
 * @return Whether the class is logical and the shape exactly 1-by-1, without further
 *         extents.
 */
ORB_API bool orbIsLogicalScalar(const orbArray a);

/**
 * @return Whether orbIsLogicalScalar() holds and the value is true; for a sparse array,
 *         its first stored value. False when nothing is stored.
 */
ORB_API bool orbIsLogicalScalarTrue(const orbArray a);

/** @return Whether any extent is 0, or there is none. */
ORB_API bool orbIsEmpty(const orbArray a);

/**
 * @return Whether `name` is exactly the text of orbGetClassName(), case included; false
 *         for a sparse array that holds neither doubles nor logicals, as only a server
 *         can make one.
 */
ORB_API bool orbIsClass(const orbArray a, const char* name);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* ORB_QXORBCLIENT_H_ */
