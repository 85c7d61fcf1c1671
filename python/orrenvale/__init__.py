"""Design, run and analyse Orrenvale worlds from Python.

The module drives the same engine and datafile code as the Orrenvale
application and orrenvale-batch, so a world stepped here gives the same bits
as it does there.

    import orrenvale
    world = orrenvale.World.load("examples/figure-eight.ovd")
    world.step(1000)
    print(world.energy(), world.positions)

World        parameters as properties, bodies, whole-state NumPy arrays,
             step(n) with a callback, record(n), energy and momenta, log lines,
             load and save of datafiles.
Body         one body of a world, found again by identifier on every access.
Recording    the states of a run as (frames, bodies, fields) arrays.
DatafileError  a datafile that cannot be read or written (an OSError).

`python3 -m orrenvale` is orrenvale-batch: the same options and output.
"""

from orrenvale._orrenvale import Body, DatafileError, Recording, World, __version__

__all__ = ["Body", "DatafileError", "Recording", "World", "__version__"]

# The classes are defined in the extension module; they belong to the package.
for _cls in (Body, DatafileError, Recording, World):
    _cls.__module__ = __name__
del _cls
