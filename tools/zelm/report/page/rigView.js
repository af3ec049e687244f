"use strict";
// The rig and the plates of all views, to turn.

class ZelmRig {
  constructor(figure, data) {
    this.data = data;
    this.viewer = new ZelmViewer(figure, "The rig and all plates in space");
    this.box = new THREE.Box3();
    this.plates = data.plates.map(plate => this.addPlate(plate));
    this.addDots();
    data.cameras.forEach((camera, i) => this.addCamera(camera, i === 0 ? "left" : "right"));
    const cell = this.addFloor();
    this.addButtons();
    this.viewer.explain(
      "Drag to turn, right button or two fingers to move, wheel to zoom once the view is in use. Click a plate to " +
      "see its images. Grid: " + cell + " " + data.units + ".");
    this.viewer.show(this.box, this.viewDirection());
    this.listen();
  }

  material(name, opacity) {
    return this.viewer.paint(new THREE.MeshBasicMaterial({
      side: THREE.DoubleSide, transparent: true, opacity, depthWrite: false}), name);
  }

  lines(points, name) {
    const material = this.viewer.paint(new THREE.LineBasicMaterial(), name);
    const lines = new THREE.LineSegments(new THREE.BufferGeometry().setFromPoints(points), material);
    this.viewer.scene.add(lines);
    return lines;
  }

  quad(corners, material) {
    const geometry = new THREE.BufferGeometry().setFromPoints(corners);
    geometry.setIndex([0, 1, 2, 0, 2, 3]);
    const mesh = new THREE.Mesh(geometry, material);
    this.viewer.scene.add(mesh);
    return mesh;
  }

  addPlate(plate) {
    const corners = plate.corners.map(zelmPoint);
    corners.forEach(corner => this.box.expandByPoint(corner));
    const mesh = this.quad(corners, this.material("accent", 0.08));
    const edges = [];
    corners.forEach((corner, i) => edges.push(corner, corners[(i + 1) % 4]));
    const outline = this.lines(edges, "accent");
    mesh.userData = {plate, outline};
    return mesh;
  }

  addDots() {
    const points = this.data.plates.flatMap(plate => plate.dots.map(zelmPoint));
    const material = this.viewer.paint(new THREE.PointsMaterial({size: 1.6, sizeAttenuation: false}), "ink");
    this.viewer.scene.add(new THREE.Points(new THREE.BufferGeometry().setFromPoints(points), material));
  }

  addCamera(camera, side) {
    const centre = zelmPoint(camera.centre);
    const window = camera.window.map(zelmPoint);
    const edges = [];
    window.forEach((corner, i) => {
      edges.push(corner, window[(i + 1) % 4]);
      if (!camera.parallel) {
        edges.push(centre, corner);
      }
      this.box.expandByPoint(corner);
    });
    this.box.expandByPoint(centre);
    this.lines(edges, side);
    this.quad(window, this.material(side, 0.1));
    const length = centre.distanceTo(window[0]);
    const tip = centre.clone().add(zelmPoint(camera.axis).multiplyScalar(1.4 * length));
    this.lines([centre, tip], side);
    this.viewer.tag(centre, camera.name, side);
  }

  // A grid below everything, for scale; the side of its cells.
  addFloor() {
    const size = this.box.getSize(new THREE.Vector3());
    const middle = this.box.getCenter(new THREE.Vector3());
    const wanted = Math.max(size.x, size.z, 1e-9) / 8;
    const power = Math.pow(10, Math.floor(Math.log10(wanted)));
    const cell = power * [1, 2, 5, 10].find(step => step * power >= wanted);
    const half = Math.ceil(0.6 * Math.max(size.x, size.z) / cell);
    const y = this.box.min.y - 0.04 * size.y;
    const ends = [];
    for (let i = -half; i <= half; ++i) {
      ends.push(new THREE.Vector3(middle.x + i * cell, y, middle.z - half * cell),
                new THREE.Vector3(middle.x + i * cell, y, middle.z + half * cell),
                new THREE.Vector3(middle.x - half * cell, y, middle.z + i * cell),
                new THREE.Vector3(middle.x + half * cell, y, middle.z + i * cell));
    }
    this.lines(ends, "line");
    return Number(cell.toPrecision(1));
  }

  viewDirection() { return new THREE.Vector3(0.85, 0.6, 0.75); }

  addButtons() {
    const look = (x, y, z) => () => this.viewer.look(new THREE.Vector3(x, y, z));
    this.viewer.button("Reset", () => this.viewer.reset());
    this.viewer.button("From behind", look(0, 0.15, 1));
    this.viewer.button("From above", look(0, 1, 0.001));
    this.viewer.button("From the side", look(1, 0.1, 0));
    this.words = document.createElement("output");
    this.viewer.bar.append(this.words);
  }

  listen() {
    this.viewer.canvas.addEventListener("pointermove", event => {
      if (event.buttons === 0) {
        this.mark(this.plateAt(event));
      }
    });
    this.viewer.canvas.addEventListener("pointerleave", () => this.mark(null));
    zelmOnClick(this.viewer.canvas, event => {
      const mesh = this.plateAt(event);
      this.mark(mesh);
      if (mesh) {
        document.dispatchEvent(new CustomEvent("zelm-view", {detail: {view: mesh.userData.plate.view}}));
      }
    });
    document.addEventListener("zelm-view", event => {
      this.mark(this.plates.find(mesh => mesh.userData.plate.view === event.detail.view) || null);
    });
  }

  plateAt(event) {
    const ray = new THREE.Raycaster();
    ray.setFromCamera(this.viewer.place(event), this.viewer.camera);
    const hits = ray.intersectObjects(this.plates);
    return hits.length > 0 ? hits[0].object : null;
  }

  mark(mesh) {
    if (mesh === this.marked) {
      return;
    }
    this.plates.forEach(plate => { plate.material.opacity = plate === mesh ? 0.5 : 0.08; });
    this.marked = mesh;
    this.words.textContent = mesh ? this.wordsOf(mesh.userData.plate) : "";
    this.viewer.draw();
  }

  wordsOf(plate) {
    const tilts = ["left", "right"].map((side, i) => plate.tilts[i] === null ? "" : side + " " + plate.tilts[i] + "°");
    return "View " + plate.view + ": tilted against the cameras by " + tilts.filter(text => text).join(", ");
  }
}

document.querySelectorAll("figure[data-scene=rig]").forEach(figure => {
  zelmIn3d(figure, () => new ZelmRig(figure, JSON.parse(document.getElementById("rig-data").textContent)));
});
