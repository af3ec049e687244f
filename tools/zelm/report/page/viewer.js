"use strict";
// A 3-D view that takes the place of a figure's still picture: turning, zooming, keys, labels, light and dark. Data are
// in frames with x right, y down and z forward; zelmPoint() turns them into what is drawn, y up and z backward.

function zelmPoint(p) { return new THREE.Vector3(p[0], -p[1], -p[2]); }

function zelmColour(name) {
  const text = getComputedStyle(document.documentElement).getPropertyValue("--" + name).trim();
  return new THREE.Color(text || "#888888");
}

// The viewer; colours are those of the page and change with its light and dark.
class ZelmViewer {
  // Throws where the browser draws no 3-D; the figure then keeps its still picture.
  constructor(figure, name) {
    if (!document.createElement("canvas").getContext("webgl")) {
      throw new Error("no 3-D");
    }
    this.canvas = document.createElement("canvas");
    this.canvas.tabIndex = 0;
    this.canvas.setAttribute("role", "img");
    this.canvas.setAttribute("aria-label", name + ". Arrow keys turn, plus and minus zoom, Home resets.");
    this.renderer = new THREE.WebGLRenderer({canvas: this.canvas, antialias: true, alpha: true});
    this.renderer.setPixelRatio(Math.min(window.devicePixelRatio || 1, 2));
    this.scene = new THREE.Scene();
    this.camera = new THREE.PerspectiveCamera(35, 1, 1, 1000);
    this.controls = new THREE.OrbitControls(this.camera, this.canvas);
    this.controls.enableKeys = false;   // they would listen to the whole page
    this.controls.enableZoom = false;   // until the view is in use, so that the wheel scrolls the page
    this.controls.addEventListener("change", () => this.draw());
    this.painted = [];
    this.tags = [];
    this.pending = false;
    this.insert(figure);
    this.listen();
  }

  insert(figure) {
    this.frame = document.createElement("div");
    this.frame.className = "viewer";
    this.frame.append(this.canvas);
    this.bar = document.createElement("div");
    this.bar.className = "viewer-bar";
    figure.prepend(this.frame);
    this.frame.after(this.bar);
    figure.classList.add("with-viewer");
  }

  // How to use the view, in place of the words about the still picture, which paper keeps.
  explain(text) {
    const words = document.createElement("p");
    words.className = "note viewer-help";
    words.textContent = text;
    this.bar.after(words);
  }

  listen() {
    this.canvas.addEventListener("focus", () => { this.controls.enableZoom = true; });
    this.canvas.addEventListener("blur", () => { this.controls.enableZoom = false; });
    this.canvas.addEventListener("keydown", event => this.key(event));
    new ResizeObserver(() => this.resize()).observe(this.canvas);
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => this.repaint());
  }

  key(event) {
    const step = Math.PI / 36;
    const moves = {
      ArrowLeft: () => this.turn(-step, 0), ArrowRight: () => this.turn(step, 0),
      ArrowUp: () => this.turn(0, -step), ArrowDown: () => this.turn(0, step),
      "+": () => this.zoom(1 / 1.15), "=": () => this.zoom(1 / 1.15), "-": () => this.zoom(1.15),
      Home: () => this.reset()
    };
    if (moves[event.key] && !event.ctrlKey && !event.metaKey && !event.altKey) {
      event.preventDefault();
      moves[event.key]();
    }
  }

  turn(around, over) {
    const place = this.camera.position.clone().sub(this.controls.target);
    const spherical = new THREE.Spherical().setFromVector3(place);
    spherical.theta += around;
    spherical.phi += over;
    spherical.makeSafe();
    this.camera.position.setFromSpherical(spherical).add(this.controls.target);
    this.controls.update();
    this.draw();
  }

  zoom(factor) {
    this.camera.position.sub(this.controls.target).multiplyScalar(factor).add(this.controls.target);
    this.controls.update();
    this.draw();
  }

  // Shows the whole box from a direction.
  look(direction) {
    const centre = this.box.getCenter(new THREE.Vector3());
    const distance = this.distanceFor(centre, direction);
    this.camera.near = distance / 200;
    this.camera.far = distance * 20;
    this.controls.target.copy(centre);
    this.camera.position.copy(direction.clone().normalize().multiplyScalar(distance).add(centre));
    this.camera.updateProjectionMatrix();
    this.controls.update();
    this.draw();
  }

  // So far from the centre the corners of the box are just in sight.
  distanceFor(centre, direction) {
    const up = Math.tan(this.camera.fov * Math.PI / 360) * 0.94;
    const turned = new THREE.Matrix4().lookAt(direction, new THREE.Vector3(), this.camera.up);
    const toEye = new THREE.Matrix4().getInverse(turned);
    let distance = 1e-9;
    for (let i = 0; i < 8; ++i) {
      const corner = new THREE.Vector3(i & 1 ? this.box.min.x : this.box.max.x, i & 2 ? this.box.min.y : this.box.max.y,
                                       i & 4 ? this.box.min.z : this.box.max.z).sub(centre).applyMatrix4(toEye);
      distance = Math.max(distance, Math.abs(corner.x) / (up * this.camera.aspect) + corner.z,
                          Math.abs(corner.y) / up + corner.z);
    }
    return distance;
  }

  // What there is to see; the first look sets what Home goes back to.
  show(box, direction) {
    this.box = box;
    this.home = direction;
    this.resize();
    this.look(direction);
  }

  reset() { this.look(this.home); }

  button(text, action) {
    const button = document.createElement("button");
    button.type = "button";
    button.textContent = text;
    button.addEventListener("click", action);
    this.bar.append(button);
    return button;
  }

  // A material whose colour is one of the page's.
  paint(material, name) {
    material.color.copy(zelmColour(name));
    this.painted.push({material, name});
    return material;
  }

  repaint() {
    for (const {material, name} of this.painted) {
      material.color.copy(zelmColour(name));
    }
    this.draw();
  }

  // Words that stay at a point.
  tag(point, text, colour) {
    const element = document.createElement("span");
    element.className = "tag";
    element.textContent = text;
    element.style.color = "var(--" + colour + ")";
    element.setAttribute("aria-hidden", "true");
    this.frame.append(element);
    const tag = {point, element, hidden: false};
    this.tags.push(tag);
    return tag;
  }

  placeTags() {
    const width = this.canvas.clientWidth;
    const height = this.canvas.clientHeight;
    for (const {point, element, hidden} of this.tags) {
      const p = point.clone().project(this.camera);
      element.hidden = hidden || p.z > 1;
      element.style.transform = "translate(" + (0.5 + 0.5 * p.x) * width + "px," + (0.5 - 0.5 * p.y) * height +
                                "px) translate(-50%,-160%)";
    }
  }

  resize() {
    const width = this.canvas.clientWidth;
    const height = this.canvas.clientHeight;
    if (width > 0 && height > 0) {
      this.renderer.setSize(width, height, false);
      this.camera.aspect = width / height;
      this.camera.updateProjectionMatrix();
      this.draw();
    }
  }

  draw() {
    if (!this.pending) {
      this.pending = true;
      requestAnimationFrame(() => {
        this.pending = false;
        this.renderer.render(this.scene, this.camera);
        this.placeTags();
        this.canvas.dataset.drawn = "yes";
      });
    }
  }

  // Of a mouse or touch event, its place on the canvas: -1 to 1 to the right and up.
  place(event) {
    const area = this.canvas.getBoundingClientRect();
    return new THREE.Vector2(2 * (event.clientX - area.left) / area.width - 1,
                             1 - 2 * (event.clientY - area.top) / area.height);
  }
}

// Calls the action for clicks, not for the end of a drag.
function zelmOnClick(canvas, action) {
  let start = null;
  canvas.addEventListener("pointerdown", event => { start = [event.clientX, event.clientY]; });
  canvas.addEventListener("pointerup", event => {
    if (start && Math.hypot(event.clientX - start[0], event.clientY - start[1]) < 5) {
      action(event);
    }
    start = null;
  });
}

// Runs what makes a 3-D view; where that cannot be, the still picture stays.
function zelmIn3d(figure, make) {
  try {
    make(figure);
  } catch (failure) {
    figure.querySelectorAll(".viewer, .viewer-bar, .viewer-help").forEach(element => element.remove());
    figure.classList.remove("with-viewer");
  }
}
