"""Makes Python functions from the entries of a call table.

A function is written as source text, once, when it is first asked for: straight-line code with the checks and
conversions of its own arguments costs less than any loop over a description would. The source is registered with
linecache, so that tracebacks show it.
"""

import ctypes
import linecache
from collections import namedtuple
from types import FunctionType, ModuleType
from typing import Any, Dict, List, Sequence

import numpy as np

from . import _arrays, _coreChecks, _handles, _records
from ._errors import fail
from ._record import dtypeOf as dtypeOf
from ._recordArrays import arrayOfRecords, entriesOfViews, recordsOf, string
from ._signature import ARRAY_CODES, HANDLES, IMAGES, Entry, Item

CALLING = ("ZelmMeasureMatchOptions",)  # records with a function that the library calls
_DTYPES = {code: np.dtype(code) for code in ARRAY_CODES}


def resultClass(function: str, entry: Entry) -> Any:
    """The named tuple of a function that has several results."""
    return namedtuple(function + "Result", [item.name for item in entry.results])  # type: ignore[misc]


def namespace(module: str, checks: Any = _coreChecks, fail: Any = fail) -> Dict[str, Any]:
    """What the source of every function sees: among others the helpers of its table, and what raises for a status."""
    names: Dict[str, Any] = {"__name__": module}
    for source in (_records, checks, _arrays):
        names.update({name: value for name, value in vars(source).items() if not name.startswith("_")})
    names.update({f"dtype_{code}": dtype for code, dtype in _DTYPES.items()})
    names.update({cls.__name__: cls for cls in vars(_handles).values() if isinstance(cls, type)})
    names.update(ndarray=np.ndarray, empty=np.empty, full=np.full, byref=ctypes.byref, fail=fail)
    names.update(c_int32=ctypes.c_int32, c_int64=ctypes.c_int64, c_double=ctypes.c_double, c_void_p=ctypes.c_void_p)
    names.update(new=ctypes.Structure.__new__, nan=float("nan"), string=string)
    names.update(arrayOfRecords=arrayOfRecords, entriesOfViews=entriesOfViews, recordsOf=recordsOf)
    return names


def build(function: str, entry: Entry, prototype: Sequence[str], call: Any, names: Dict[str, Any]) -> FunctionType:
    """The Python function of an entry that is not written by hand."""
    source = _Writer(function, entry, prototype).write()
    scope = dict(names, _call=call)
    if len(entry.results) > 1:
        scope["_Result"] = names[function + "Result"]
    file = f"<zelm: {function}>"
    linecache.cache[file] = (len(source), None, source.splitlines(True), file)
    exec(compile(source, file, "exec"), scope)
    return scope[function]


def parameters(entry: Entry) -> str:
    """The parameter list of the Python function."""
    parts = []
    for item in entry.given():
        default = item.default if item.isConstant else "None"
        if item.type == "float" and default != "None":
            default = repr(float(default or 0))
        parts.append(item.name if item.default is None else f"{item.name}={default}")
    return ", ".join(parts)


class _Writer:
    def __init__(self, function: str, entry: Entry, prototype: Sequence[str]):
        self.function = function
        self.entry = entry
        self.returns = prototype[0]
        self.order = [argument.rsplit(" ", 1)[1] for argument in prototype[1:]]
        self.types = {argument.rsplit(" ", 1)[1]: argument.rsplit(" ", 1)[0] for argument in prototype[1:]}
        self.lines: List[str] = []
        self.bound: List[str] = []
        self.passed: Dict[str, str] = {}  # C argument: expression
        self.depth = 1

    def put(self, line: str) -> None:
        self.lines.append("    " * self.depth + line)

    def write(self) -> str:
        handles = [i for i in self.entry.arguments if i.type in HANDLES]
        for item in handles:
            self._handle(item)
        if len(handles) == 1 and not handles[0].optional:
            enter = "_enterAlone" if handles[0].inOut else "_enter"
            self.put(f"{handles[0].name}.{enter}()")
        elif handles:
            pairs = "".join(f"({i.name}, {i.inOut}), " for i in handles)
            self.put(f"_held = enterAll({pairs.strip()})")
        if handles:
            self.put("try:")
            self.depth = 2
        self._body([i for i in self.entry.arguments if i not in handles])
        if handles:
            self.depth = 1
            self.put("finally:")
            single = len(handles) == 1 and not handles[0].optional
            self.put(f"    {handles[0].name}._leave()" if single else "    leaveAll(_held)")
        return f"def {self.function}({parameters(self.entry)}):\n" + "\n".join(self.lines) + "\n"

    def _handle(self, item: Item) -> None:
        name = item.name
        self.put(f"if not isinstance({name}, {item.type}){f' and {name} is not None' if item.optional else ''}:")
        self.put(f"    wrongType({name}, '{item.type}', '{self.function}', '{name}')")
        self.passed[name] = f"None if {name} is None else {name}._pointer" if item.optional else f"{name}._pointer"

    def _body(self, arguments: List[Item]) -> None:
        late = [i for i in arguments if i.default is not None and not i.isConstant]
        for item in arguments:
            if item not in late and item.expression is None:
                self._argument(item)
        for item in late:
            self.put(f"if {item.name} is None:")
            self.put(f"    {item.name} = {item.default}")
            self._argument(item)
        for item in arguments:
            if item.expression is not None:
                self.put(f"{item.name} = {item.expression}")
                self.passed[item.name] = item.name
        for check in self.entry.checks:
            name, _, rest = check.partition("(")
            self.put(f"{name}('{self.function}', {rest}")
        self._results()
        self._callAndReturn()

    def _argument(self, item: Item) -> None:
        name = item.name
        where = f"'{self.function}', '{name}'"
        self.passed[name] = name
        if item.type == "int" and self.types[name] == "int64_t":
            self.put(f"{name} = toInt({name}, {where}, 64)")
            self.bound.append(name)
        elif item.type == "int":
            self.put(f"if {name}.__class__ is not int or not -2147483648 <= {name} <= 2147483647:")
            self.put(f"    {name} = toInt({name}, {where})")
            self.bound.append(name)
        elif item.type == "camera":
            self.put(f"{name} = toCamera({name}, {where})")
        elif item.type == "float":
            self.put(f"if {name}.__class__ is not float:")
            self.put(f"    {name} = toFloat({name}, {where})")
        elif item.type == "views":
            self.put(f"{name} = entriesOfViews({name}, {where})")
            self._dims(item, f"(len({name}),)")
        elif item.type in ARRAY_CODES:
            self._array(item, where)
        elif item.type == "bytes":
            self.put(f"{name} = toBytes({name}, {where})")
        elif item.type == "gray":
            self.put(f"{name} = toPixels({name}, {where}, True)")
            self._dims(item, f"{name}.shape")
            self.put(f"_{name} = grayOf({name})")
            self.passed[name] = f"_{name}"
        elif item.type in IMAGES:
            self._image(item, where)
        elif item.dims:
            self.put(f"{name} = recordsOf({item.type}, {name}, {where})")
            self._dims(item, f"{name}.shape")
            self.passed[name] = f"pointer({name})"
        else:
            self._record(item, where)

    def _array(self, item: Item, where: str) -> None:
        name, dtype = item.name, f"dtype_{item.type}"
        if item.optional:
            self.put(f"if {name} is not None:")
            self.depth += 1
        if item.inOut:
            self.put(f"inOut({name}, {dtype}, {where})")
        elif item.type == "u1":
            self.put(f"{name} = toPixels({name}, {where})")
        else:
            self.put(f"if {name}.__class__ is not ndarray or {name}.dtype is not {dtype} or not {name}.flags.carray:")
            self.put(f"    {name} = toArray({name}, {dtype}, {where})")
        self._dims(item, f"{name}.shape")
        self.passed[name] = f"pointer({name})"
        if item.optional:
            self.depth -= 1
            self.passed[name] = f"None if {name} is None else pointer({name})"

    def _dims(self, item: Item, shape: str) -> None:
        """Takes unknown dimensions from the shape and demands the others."""
        if not item.dims:
            return
        known, fresh = [], []
        for dim in item.dims:
            if dim.isidentifier() and dim not in self.bound and dim not in fresh:
                known.append(f"'{dim}'")
                fresh.append(dim)
            else:
                known.append(dim)
        if fresh and any(dim in fresh and f"'{dim}'" != k for dim, k in zip(item.dims, known)):
            first = item.dims.index(fresh[0])  # a square matrix: its second dimension is the first one
            self.put(f"{fresh[0]} = {shape}[{first}] if len({shape}) > {first} else -1")
            known = list(item.dims)
            self.bound += fresh
            fresh = []
        tuple_ = f"({', '.join(known)},)"
        if shape.startswith("("):
            self.put(f"{', '.join(fresh)}, = {shape}")
        else:
            self.put(f"checkShape({item.name}, {tuple_}, '{self.function}', '{item.name}')")
            if fresh:
                targets = [d if d in fresh else "_" for d in item.dims]
                self.put(f"{', '.join(targets)}{',' if len(targets) == 1 else ''} = {shape}")
        self.bound += fresh

    def _image(self, item: Item, where: str) -> None:
        name = item.name
        dims = item.dims + (("4",) if item.type == "argb" else ())
        strided = item.type != "image"
        indent = self.depth
        if item.optional:
            self.put(f"if {name} is not None:")
            self.depth += 1
        if item.inOut:
            self.put(f"inOut({name}, dtype_u1, {where}, {strided})")
        else:
            self.put(f"{name} = toPixels({name}, {where}, {strided})")
        wanted = Item(name, item.type, dims)
        if item.optional:  # may be left out, so that nothing follows from its size
            free = tuple(f"'{dim}'" if dim.isidentifier() else dim for dim in dims)
            self.put(f"checkShape({name}, ({', '.join(free)},), {where})")
        else:
            self._dims(wanted, f"{name}.shape")
        self.depth = indent
        self.put(f"_{name} = {'bufferOf' if strided else 'imageOf'}({name})")
        self.passed[name] = f"_{name}" if strided else f"byref(_{name})"

    def _record(self, item: Item, where: str) -> None:
        name = item.name
        test = f"{name}.__class__ is not {item.type}"
        if item.optional:
            test = f"{name} is not None and {test}"
        self.put(f"if {test}:")
        if item.inOut:
            self.put(f"    wrongType({name}, '{item.type}, which is written,', {where})")
        else:
            self.put(f"    {name} = toRecord({item.type}, {name}, {where})")
        if getattr(_records, item.type)._sized_:
            guard = f"{name} is not None and " if item.optional else ""
            self.put(f"if {guard}{name}.size != {ctypes.sizeof(getattr(_records, item.type))}:")
            self.put(f"    wrongSize({name}, {where})")
        self.passed[name] = f"byref({name})" if not item.optional else f"None if {name} is None else byref({name})"

    def _results(self) -> None:
        for item in self.entry.results:
            if item.limit and item.limit != "return":
                self.put(f"{item.limit} = {self._integer(item.limit)}()")
                self.passed[item.limit] = f"byref({item.limit})"
            if not item.type or item.expression:
                continue
            name = item.name
            self.passed[name] = f"byref({name})"
            if item.type in HANDLES:
                self.put(f"{name} = c_void_p()")
            elif item.type == "int":
                self.put(f"{name} = {self._integer(name)}()")
            elif item.type == "float":
                self.put(f"{name} = c_double({'nan' if item.nan else ''})")
            elif item.dims:
                self._resultArray(item)
            else:
                self.put(f"{name} = {item.type}()" if self._isSized(item) else f"{name} = new({item.type})")
                if item.nan and not getattr(_records, item.type)._ranges_:
                    self.put(f"for _field in {item.type}._names_:")
                    self.put(f"    setattr({name}, _field, nan)")

    def _integer(self, name: str) -> str:
        return "c_int64" if self.types[name] == "int64_t*" else "c_int32"

    @staticmethod
    def _isSized(item: Item) -> bool:
        return getattr(_records, item.type)._sized_

    def _resultArray(self, item: Item) -> None:
        name = item.name
        dims = []
        for dim in item.dims + (("4",) if item.type == "argb" else ()):
            simple = dim.isdigit() or (dim in self.bound and not self._isGiven(dim))
            dims.append(dim if simple else f"size({dim}, '{self.function}', '{name}')")
        shape = f"({', '.join(dims)},)"
        if item.type in IMAGES or item.type == "u1":
            self.put(f"{name} = zeros(*{shape})")
        elif item.type in ARRAY_CODES:
            self.put(f"{name} = full({shape}, nan)" if item.nan else f"{name} = empty({shape}, dtype_{item.type})")
        else:
            self.put(f"{name} = arrayOfRecords({item.type}, {dims[0]})")
        self.passed[name] = f"bufferOf({name})" if item.type in ("planar", "argb") else f"pointer({name})"

    def _isGiven(self, dim: str) -> bool:
        return any(item.name == dim for item in self.entry.arguments)

    def _callAndReturn(self) -> None:
        arguments = ", ".join(self.passed.get(name, name) for name in self.order)
        own = [item.name for item in self.entry.results if item.expression == "return"]
        if self.returns == "void":
            self.put(f"_call({arguments})")
        else:
            self.put(f"_status = _call({arguments})")
            if self._opens():
                self._wrapHandle()
            elif self.returns == "int32_t":
                self.put("if _status < 0:")
                partial = [f"'{i.name}': {self._value(i, own)}" for i in self.entry.results if i.failing]
                rest = f", {{{', '.join(partial)}}}" if partial else self._teller()
                self.put(f"    fail('{self.function}', _status{rest})")
        values = [self._value(item, own) for item in self.entry.results]
        if len(values) > 1:
            self.put(f"return _Result({', '.join(values)})")
        elif values:
            self.put(f"return {values[0]}")

    def _opens(self) -> bool:
        return any(item.type in HANDLES for item in self.entry.results)

    def _wrapHandle(self) -> None:
        """The object of a handle that was opened; a refused one has the words and is closed."""
        name = next(item.name for item in self.entry.results if item.type in HANDLES)
        self.put(f"{name} = {self._resultType(name)}._opened('{self.function}', _status, {name}{self._teller()})")

    def _resultType(self, name: str) -> str:
        return next(item.type for item in self.entry.results if item.name == name)

    def _teller(self) -> str:
        """What knows more of a failure: the first handle that keeps words, and options that call back."""
        tellers = [i.name for i in self.entry.arguments if i.type in HANDLES[1:]]
        options = [i.name for i in self.entry.arguments if i.type in CALLING]
        if not tellers:
            return ""
        return f", {tellers[0]}" + (f", {options[0]}" if options else "")

    def _value(self, item: Item, own: List[str]) -> str:
        if item.name in own:
            return "string(_status)" if self.returns == "const char*" else "_status"
        if item.type in ("int", "float"):
            return f"{item.name}.value"
        if item.limit:
            count = "_status" if item.limit == "return" else f"{item.limit}.value"
            return f"{item.name}[:{count}].copy()"
        return item.name


def attach(function: Any, module: ModuleType, doc: str) -> None:
    """Gives a function its name, home and words."""
    function.__module__ = module.__name__
    function.__qualname__ = function.__name__
    function.__doc__ = doc
